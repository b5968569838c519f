#include "host/web/login/password_change.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "host/web/log.h"
#include "host/web/login/password.h"
#include "host/web/login/throttle.h"
#include "host/web/login/users.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace web;
using namespace web::login;

class PasswordChanges : public testing::Test {
 protected:
  static void SetUpTestSuite() { hash_ = HashPassword("correct horse"); }

  void SetUp() override {
    users_.Put({"KALVO\\alice", true, false, hash_});
    users_.Put({"KALVO\\bob", false, true, hash_});
  }

  std::string Change(const std::string& old, const std::string& chosen, const std::string& again) {
    return ChangePassword(users_, throttle_, log_, {"KALVO\\bob", "10.0.0.1", ""},
                          "OldPassword=" + old + "&NewPassword=" + chosen + "&RepeatedPassword=" + again);
  }

  bool Fits(const std::string& password) { return PasswordFits(users_.Find("KALVO\\bob")->hash, password); }

  static std::string hash_;
  TemporaryFolder folder_;
  UsersFile users_{folder_.Path() / "users"};
  Throttle throttle_{folder_.Path() / "attempts"};
  Log log_{(folder_.Path() / "log").string()};
};

std::string PasswordChanges::hash_;

TEST_F(PasswordChanges, GiveTheUserTheNewOneAndNothingElse) {
  EXPECT_EQ(Change("correct+horse", "battery+staple", "battery+staple"), "changed");
  EXPECT_TRUE(Fits("battery staple"));
  EXPECT_FALSE(Fits("correct horse"));
  const auto bob = users_.Find("KALVO\\bob");
  EXPECT_TRUE(bob->drillDown && !bob->administrator);
  EXPECT_EQ(users_.Find("KALVO\\alice")->hash, hash_);
}

TEST_F(PasswordChanges, AreRefused) {
  const struct {
    const char *why, *old, *chosen, *again, *outcome;
  } kCases[] = {
      {"the old one is another", "correct+hors", "battery+staple", "battery+staple", "wrong"},
      {"there is no old one", "", "battery+staple", "battery+staple", "wrong"},
      {"two new ones", "correct+horse", "battery+staple", "battery+stable", "differ"},
      {"a short one", "correct+horse", "staple", "staple",
       "no a password has at least 12 characters and at most 1024 bytes; several words make a good one"},
      {"none", "correct+horse", "", "",
       "no a password has at least 12 characters and at most 1024 bytes; several words make a good one"},
      {"a common one", "correct+horse", "password2026", "password2026",
       "no this password is one of those that are guessed first; several words make a good one"},
      {"the old one again", "correct+horse", "correct+horse", "correct+horse", "no the new password is the old one"},
  };
  for (const auto& c : kCases) EXPECT_EQ(Change(c.old, c.chosen, c.again), c.outcome) << c.why;
  EXPECT_TRUE(Fits("correct horse"));
  EXPECT_EQ(ReadFile(folder_.Path() / "log").find("staple"), std::string::npos) << "no password is written down";
}

TEST_F(PasswordChanges, AreSlowedForWhoGuessesTheOldOne) {
  for (int i = 0; i < 8; ++i) Change("guess" + std::to_string(i), "battery+staple", "battery+staple");
  EXPECT_TRUE(Change("correct+horse", "battery+staple", "battery+staple").starts_with("wait "));
  EXPECT_TRUE(Fits("correct horse"));
}

TEST_F(PasswordChanges, SayWhenTheFileCannotBeWritten) {
  std::filesystem::create_directory(folder_.Path() / "users.new");  // nothing can be put in its place
  WriteFile(folder_.Path() / "users.new/x", "");
  EXPECT_EQ(Change("correct+horse", "battery+staple", "battery+staple"), "fixed");
  EXPECT_TRUE(Fits("correct horse"));
  EXPECT_NE(ReadFile(folder_.Path() / "log").find("the password of KALVO\\bob was not changed: "), std::string::npos);
}

TEST_F(PasswordChanges, AreOfNobodyWhoIsNoUserAnyMore) {
  users_.Remove("KALVO\\bob");
  EXPECT_EQ(Change("correct+horse", "battery+staple", "battery+staple"), "wrong");
  EXPECT_FALSE(users_.Find("KALVO\\bob"));
}

}  // namespace
}  // namespace kalvo::test
