#include "adapters/imap/response_guard.h"

#include <gtest/gtest.h>

namespace kalvo::test {
namespace {

using namespace imap;

Limits SmallLimits() {
  Limits limits;
  limits.lineBytes = 100;
  limits.literalBytes = 1000;
  limits.answerBytes = 5000;
  limits.depth = 5;
  return limits;
}

std::string Many(std::string_view text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

// What the guard says of bytes that come one by one, and of the same in one piece.
std::string Refusal(const std::string& bytes) {
  const auto limits = SmallLimits();
  ResponseGuard slow(limits), fast(limits);
  for (const char byte : bytes) {
    if (!slow.Accept({&byte, 1})) break;
  }
  fast.Accept(bytes);
  if (bytes.size() <= limits.answerBytes) {
    EXPECT_EQ(slow.Refusal(), fast.Refusal());
  }
  return fast.Refusal();
}

TEST(ResponseGuard, LetsOrdinaryAnswersPass) {
  const struct {
    const char* why;
    std::string bytes;
  } kCases[] = {
      {"nothing", ""},
      {"many short lines", Many("* 1 EXISTS\r\n", 100)},
      {"as deep as allowed", "* 1 FETCH (((((1)))))\r\n"},
      {"one after another", "* 1 FETCH " + Many("(1)", 20) + "\r\n"},
      {"parentheses in a string", "* 1 FETCH (\"" + Many("(", 50) + "\")\r\n"},
      {"an escaped quote in a string", "* 1 FETCH (\"a\\\"" + Many("(", 50) + "\")\r\n"},
      {"a literal longer than a line", "* 1 FETCH (X {500}\r\n" + Many("(", 500) + ")\r\n"},
      {"a literal that does not wait", "* 1 FETCH (X {500+}\r\n" + Many("\n", 500) + ")\r\n"},
      {"prose with parentheses", "* OK " + Many(":-( ", 20) + "\r\n"},
      {"prose with one quote", "A1 NO don't say \"\r\n* 1 FETCH (1)\r\n"},
      {"no lasting flags", "* OK hello\r\n* OK [PERMANENTFLAGS ()] Read-only mailbox.\r\n"},
      {"lasting flags", "* OK hello\r\n* OK [PERMANENTFLAGS (\\Seen $Junk \\*)] Limited\r\n"},
      {"lasting keywords", "* OK hello\r\n* OK [permanentflags ( a'b )] Limited\r\n"},
      {"an invitation to go on", "+ (((((((((\r\n"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Refusal(c.bytes), "");
  }
}

TEST(ResponseGuard, RefusesWhatIsTooMuch) {
  const auto deep = "* 1 FETCH (" + Many("(", 30);
  const struct {
    const char* why;
    std::string bytes, refusal;
  } kCases[] = {
      {"a long line", Many("x", 101), "sent a line of more bytes than 100"},
      {"a long line about literals", "* 1 FETCH (" + Many("{1}\r\nx ", 30), "sent a line of more bytes than 100"},
      {"a large literal", "* 1 FETCH (X {1001}\r\n", "announced a literal of more bytes than 1000"},
      {"a literal beyond counting", "* 1 FETCH (X {99999999999999999999999999}\r\n",
       "announced a literal of more bytes than 1000"},
      {"a long answer", Many("* 1 EXISTS\r\n", 500), "sent an answer of more bytes than 5000"},
      {"too deep", deep, "nested parentheses deeper than 5"},
      {"too deep behind a literal", "* 1 FETCH (X {3}\r\n\"((" + Many("(", 9), "nested parentheses deeper than 5"},
      {"a literal in prose is none", "* OK {900}\r\n" + deep, "nested parentheses deeper than 5"},
      {"a literal in prose is none, in other case", "*  ok {900}\r\n" + deep, "nested parentheses deeper than 5"},
      {"a brace in a word is no literal", "* 1 FETCH (X{900}\r\n" + deep, "nested parentheses deeper than 5"},
      {"a string over a line's end", "* 1 FETCH (X \"\r\n" + deep, "broke a line inside a quoted string"},
      {"lasting flags that are none", "* OK [PERMANENTFLAGS ((] x\r\n", "has flags that the protocol does not have"},
      {"a control character before lasting flags",
       "* OK [PERMANENTFLAGS (\x01"
       "A)] x\r\n",
       "has flags that the protocol does not have"},
      {"a line end among lasting flags", "* OK [PERMANENTFLAGS (\r)] x\r\n",
       "has flags that the protocol does not have"},
      {"a greeting with a list", "* OK [BADCHARSET (utf-8)] hello\r\n", "greets with a list, which no greeting has"},
      {"lasting flags that end at once", "* OK  [ permanentflags  (  \\\r\n",
       "has flags that the protocol does not have"},
      {"a quote in prose hides nothing", "* OK \"\r\n" + deep, "nested parentheses deeper than 5"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Refusal(c.bytes), c.refusal);
  }
}

TEST(ResponseGuard, CountsEachAnswerFromNothing) {
  ResponseGuard guard(SmallLimits());
  for (int i = 0; i < 10; ++i) {
    guard.Begin();
    EXPECT_TRUE(guard.Accept(Many("* 1 EXISTS\r\n", 100)));
  }
}

TEST(ResponseGuard, RefusesForGood) {
  ResponseGuard guard(SmallLimits());
  EXPECT_FALSE(guard.Accept(Many("x", 101)));
  guard.Begin();
  EXPECT_FALSE(guard.Accept("* OK\r\n"));
}

}  // namespace
}  // namespace kalvo::test
