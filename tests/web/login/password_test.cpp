#include "host/web/login/password.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <functional>

namespace kalvo::test {
namespace {

using namespace web;
using namespace web::login;

TEST(Password, FitsItsOwnHashAlone) {
  const std::string hash = HashPassword("correct horse");
  EXPECT_TRUE(PasswordFits(hash, "correct horse"));
  for (const char* wrong : {"", "correct hors", "correct horse ", "Correct horse", "correct horsf"}) {
    EXPECT_FALSE(PasswordFits(hash, wrong)) << wrong;
  }
}

TEST(Password, IsHashedByArgon2idWithASaltOfItsOwn) {
  const std::string first = HashPassword("correct horse"), second = HashPassword("correct horse");
  EXPECT_TRUE(first.starts_with("$argon2id$")) << first;
  EXPECT_NE(first, second);
  EXPECT_TRUE(IsPasswordHash(first));
}

TEST(Password, MayHoldAnyBytes) {
  const std::string odd("p\0\xC3\xBC\xFF ss", 8);
  const std::string hash = HashPassword(odd);
  EXPECT_TRUE(PasswordFits(hash, odd));
  EXPECT_FALSE(PasswordFits(hash, odd.substr(0, 1)));
}

TEST(Password, FitsNothingThatIsNoHash) {
  for (const std::string& hash : {std::string(), std::string("secret"), std::string("$argon2id$"),
                                  std::string("$argon2id$v=19$m=99999999,t=1,p=1$AAAA$AAAA"), std::string("$2b$10$abc"),
                                  "$argon2id$" + std::string(500, 'A')}) {
    EXPECT_FALSE(PasswordFits(hash, "secret")) << hash;
  }
}

TEST(Password, HasAKilobyteAtMost) {
  const std::string longest(1024, 'x'), longer(1025, 'x');
  EXPECT_TRUE(PasswordFits(HashPassword(longest), longest));
  EXPECT_FALSE(PasswordFits(HashPassword(longer), longer));
}

TEST(Password, OfNobodyIsCheckedLikeAnybodys) {
  const std::string hash = HashPassword("correct horse");
  const auto parameters = [](std::string_view text) { return text.substr(0, text.find('$', text.find("p="))); };
  EXPECT_EQ(parameters(kNobodysHash), parameters(hash)) << "as much work";
  EXPECT_EQ(kNobodysHash.size(), hash.size());
  EXPECT_FALSE(PasswordFits(kNobodysHash, "correct horse"));
}

// Processor time of this thread, whatever else the machine does.
double SecondsOf(const std::function<void()>& work) {
  const auto now = [] {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
  };
  const double before = now();
  work();
  return now() - before;
}

TEST(Password, OfNobodyTakesAsLongToCheck) {
  const std::string hash = HashPassword("correct horse");
  const double somebodys = SecondsOf([&] { PasswordFits(hash, "wrong horse"); });
  const double nobodys = SecondsOf([] { PretendToCheck("wrong horse"); });
  EXPECT_GT(nobodys, somebodys / 4);
}

TEST(Token, IsAnotherEachTime) {
  const std::string token = NewToken();
  EXPECT_TRUE(IsToken(token)) << token;
  EXPECT_NE(token, NewToken());
}

TEST(Token, IsOfHexadecimalDigitsAlone) {
  const std::string token = NewToken();
  for (const std::string& no : {std::string(), token + "0", token.substr(1), "../" + token.substr(3),
                                token.substr(1) + "A", token.substr(1) + std::string(1, '\0')}) {
    EXPECT_FALSE(IsToken(no)) << no;
  }
}

TEST(Fingerprint, IsTheSameForTheSameText) {
  EXPECT_EQ(Fingerprint("a"), Fingerprint("a"));
  EXPECT_NE(Fingerprint("a"), Fingerprint("b"));
  EXPECT_TRUE(IsToken(Fingerprint("a")));
}

}  // namespace
}  // namespace kalvo::test
