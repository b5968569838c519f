#include "host/web/acting/tokens.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/parts/setting_error.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace web;

namespace fs = std::filesystem;

constexpr std::int64_t kNow = 1'800'000'000;

class TokensTest : public testing::Test {
 protected:
  bool Take(const std::string& token, std::int64_t now = kNow) const { return tokens_.Take("s", "p", token, now); }
  std::string New() const { return tokens_.New("s", "p", kNow); }

  std::size_t Kept() const {
    std::size_t files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder_.Path() / "tokens"))
      files += entry.is_regular_file();
    return files - 1;  // but the secret
  }

  TemporaryFolder folder_;
  Tokens tokens_{folder_.Path() / "tokens"};
};

TEST_F(TokensTest, AreGoodOnce) {
  const std::string token = New();
  EXPECT_TRUE(Take(token));
  EXPECT_FALSE(Take(token));
  EXPECT_FALSE(Tokens(folder_.Path() / "tokens").Take("s", "p", token, kNow)) << "nor after a new start";
}

TEST_F(TokensTest, SurviveTwoTabsAndANewStart) {
  const std::string one = New(), two = New();
  EXPECT_NE(one, two);
  EXPECT_TRUE(Tokens(folder_.Path() / "tokens").Take("s", "p", two, kNow));
  EXPECT_TRUE(Take(one));
}

TEST_F(TokensTest, AreGoodForTheirSessionAndPurposeAlone) {
  const std::string token = New();
  EXPECT_FALSE(tokens_.Take("t", "p", token, kNow));
  EXPECT_FALSE(tokens_.Take("s", "q", token, kNow));
  EXPECT_FALSE(tokens_.Take("", "sp", token, kNow));
  EXPECT_FALSE(tokens_.Take("sp", "", token, kNow));
  const TemporaryFolder other;
  EXPECT_FALSE(Tokens(other.Path() / "tokens").Take("s", "p", token, kNow)) << "another server";
  EXPECT_TRUE(Take(token)) << "none of that has taken it";
}

TEST_F(TokensTest, AnyChangedCharacterMakesNone) {
  const std::string token = New();
  for (std::size_t i = 0; i < token.size(); ++i) {
    std::string changed = token;
    changed[i] = changed[i] == '0' ? '1' : '0';
    EXPECT_FALSE(Take(changed)) << i;
    EXPECT_FALSE(Take(token.substr(0, i))) << i;
  }
  for (const std::string& text :
       {token + "0", std::string(token.size(), '0'), std::string(token.size(), '/'), std::string("../../secret"),
        std::string(100000, 'a'), std::string(token.size(), '\0')}) {
    EXPECT_FALSE(Take(text));
  }
  EXPECT_EQ(Kept(), 0u);
}

TEST_F(TokensTest, EndAfterAnHour) {
  EXPECT_TRUE(Take(New(), kNow + Tokens::kLifetime - 1));
  EXPECT_FALSE(Take(New(), kNow + Tokens::kLifetime));
}

TEST_F(TokensTest, LeaveNothingBehindOnceTheirHourIsOver) {
  for (int i = 0; i < 5; ++i) EXPECT_TRUE(Take(New()));
  EXPECT_EQ(Kept(), 5u);
  EXPECT_TRUE(
      tokens_.Take("s", "p", tokens_.New("s", "p", kNow + 3 * Tokens::kLifetime), kNow + 3 * Tokens::kLifetime));
  EXPECT_EQ(Kept(), 1u);
}

TEST_F(TokensTest, OneOfManyProcessesTakesIt) {
  const std::string token = New();
  constexpr int kProcesses = 8;
  for (int i = 0; i < kProcesses; ++i) {
    if (fork() == 0) _exit(Take(token) ? 1 : 0);
  }
  int taken = 0;
  for (int i = 0; i < kProcesses; ++i) {
    int status = -1;
    wait(&status);
    taken += WEXITSTATUS(status);
  }
  EXPECT_EQ(taken, 1);
}

TEST_F(TokensTest, AreNotTakenWhereThatCannotBeKept) {
  const std::string token = New();
  WriteFile(folder_.Path() / "tokens" / ("taken-" + std::to_string((kNow + Tokens::kLifetime) / Tokens::kLifetime)),
            "");
  EXPECT_THROW(Take(token), host::SettingError);
}

TEST_F(TokensTest, KeepTheirSecretPrivate) {
  struct stat folder {
  }, secret{};
  ASSERT_EQ(stat((folder_.Path() / "tokens").c_str(), &folder), 0);
  ASSERT_EQ(stat((folder_.Path() / "tokens" / "secret").c_str(), &secret), 0);
  EXPECT_EQ(folder.st_mode & 0777, 0700u);
  EXPECT_EQ(secret.st_mode & 0777, 0600u);
  EXPECT_EQ(secret.st_size, 32);
  WriteFile(folder_.Path() / "tokens" / "secret", "short");
  EXPECT_THROW(Tokens(folder_.Path() / "tokens"), host::SettingError);
}

}  // namespace
}  // namespace kalvo::test
