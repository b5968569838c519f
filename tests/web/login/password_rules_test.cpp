#include "host/web/login/password_rules.h"

#include <gtest/gtest.h>

#include "host/web/login/password.h"

namespace kalvo::test {
namespace {

using namespace web;
using namespace web::login;

TEST(PasswordRules, SayWhatIsWrong) {
  const std::string length =
      "a password has at least 12 characters and at most 1024 bytes; several words make a good one";
  const std::string guessed = "this password is one of those that are guessed first; several words make a good one";
  const struct {
    const char* why;
    std::string password, wrong;
  } kCases[] = {
      {"several words", "correct horse", ""},
      {"the sample's", "kalvo-sample", ""},
      {"twelve random characters", "x7Gq2mVw9TfB", ""},
      {"a common word among others", "my dog hates every password", ""},
      {"many random digits", "940213758816402937415506", ""},
      {"nothing", "", length},
      {"eleven characters", "elevencharx", length},
      {"eleven characters in twelve bytes", "tencharact\xC3\xBC", length},
      {"more than the longest", std::string(1025, 'x') + "abcdefgh", length},
      {"one character", "aaaaaaaaaaaaaa", guessed},
      {"few characters", "abababababab", guessed},
      {"a common word with digits", "password2026", guessed},
      {"in any case, with signs", "!!PassWord!!", guessed},
      {"written twice", "passwordpassword", guessed},
      {"twice with digits", "letmeinletmein1", guessed},
      {"a common long word", "administrator", guessed},
      {"the keyboard's first row", "qwertyuiop12", guessed},
      {"digits alone", "123456789012", guessed},
      {"the user's own name", "Dr.Livingstone", guessed},
      {"the user's own name with a year", "dr.livingstone2026", guessed},
  };
  for (const auto& c : kCases) EXPECT_EQ(WrongWithPassword(c.password, "COTE\\dr.livingstone"), c.wrong) << c.why;
}

TEST(PasswordRules, KnowWhatPeopleTakeFirst) {
  for (const char* word :
       {"abc",      "abcdef",     "abcdefgh",       "abcdefghijkl", "admin",    "administrator",
        "baseball", "changeit",   "changeme",       "company",      "computer", "console",
        "default",  "dragon",     "exchange",       "football",     "iloveyou", "kalvo",
        "letmein",  "login",      "mail",           "manager",      "master",   "monkey",
        "pass",     "passphrase", "passwort",       "password",     "princess", "qazwsxedc",
        "qwerty",   "qwertyuiop", "qwertyuiopasdf", "qwertz",       "root",     "secret",
        "server",   "starwars",   "sunshine",       "superman",     "test",     "trustno",
        "user",     "welcome",    "welcometo",      "whatever",     "zxcvbnm",  "correcthorsebatterystaple"}) {
    EXPECT_NE(WrongWithPassword(std::string(word) + "4711081512345", "KALVO\\alice"), "") << word;
  }
  for (const char* asItStands : {"q1w2e3r4t5y6", "zaq12wsxzaq12wsx"}) {
    EXPECT_NE(WrongWithPassword(asItStands, "KALVO\\alice"), "") << asItStands;
  }
}

}  // namespace
}  // namespace kalvo::test
