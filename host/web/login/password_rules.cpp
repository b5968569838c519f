#include "host/web/login/password_rules.h"

#include <algorithm>
#include <set>

#include "host/web/login/password.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::web::login {
namespace {

constexpr std::size_t kFewestDifferent = 5;  // characters

// What people take first. A word may be written twice.
constexpr std::string_view kCommonWords[] = {
    "abc",           "abcdef",   "abcdefgh",   "abcdefghijkl",   "admin",
    "administrator", "baseball", "changeit",   "changeme",       "company",
    "computer",      "console",  "default",    "dragon",         "exchange",
    "football",      "iloveyou", "kalvo",      "letmein",        "login",
    "mail",          "manager",  "master",     "monkey",         "pass",
    "passphrase",    "passwort", "password",   "princess",       "q1w2e3r4t5y6",
    "qazwsxedc",     "qwerty",   "qwertyuiop", "qwertyuiopasdf", "qwertz",
    "root",          "secret",   "server",     "starwars",       "sunshine",
    "superman",      "test",     "trustno",    "user",           "welcome",
    "welcometo",     "whatever", "zaq12wsx",   "zxcvbnm",        "correcthorsebatterystaple",
};

std::size_t Characters(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || static_cast<unsigned char>(c) >= 0x80; }

// The text without the digits and signs at its ends.
std::string_view Core(std::string_view text) {
  const auto first = std::find_if(text.begin(), text.end(), IsLetter);
  const auto last = std::find_if(text.rbegin(), text.rend(), IsLetter).base();
  return first < last ? std::string_view(first, last) : std::string_view();
}

// "abcabc" is "abc", any other text is itself.
std::string_view Once(std::string_view text) {
  const auto half = text.substr(0, text.size() / 2);
  return !half.empty() && text.size() % 2 == 0 && text.substr(half.size()) == half ? half : text;
}

bool IsGuessedFirst(std::string_view lower, std::string_view name) {
  const std::string_view once = Once(lower), core = Once(Core(once));
  for (const std::string_view word : {once, core}) {
    if (word == name || std::find(std::begin(kCommonWords), std::end(kCommonWords), word) != std::end(kCommonWords)) {
      return true;
    }
  }
  return core.empty() && lower.size() < 2 * kShortestPassword;  // digits and signs alone
}

}  // namespace

std::string WrongWithPassword(std::string_view password, std::string_view account) {
  if (Characters(password) < kShortestPassword || password.size() > kLongestPassword) {
    return Built([](std::string& out) {
      Append(out, "a password has at least ", kShortestPassword, " characters and at most ", kLongestPassword,
             " bytes; several words make a good one");
    });
  }
  const std::string lower = ToLower(password), name = ToLower(account.substr(account.find('\\') + 1));
  if (std::set<char>(lower.begin(), lower.end()).size() < kFewestDifferent || IsGuessedFirst(lower, name)) {
    return "this password is one of those that are guessed first; several words make a good one";
  }
  return "";
}

}  // namespace kalvo::web::login
