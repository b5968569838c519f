// What a server may say that no server should, a case each: the page gets an error in time, and the next one works.
#include <gtest/gtest.h>

#include <cctype>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "adapters/imap/hostile_server.h"
#include "support/patience.h"

namespace kalvo::test {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

struct HostileAnswer {
  std::string what;
  const char* command;
  FakeMailServer::Answer answer;
  const char* words;  // of the error
};

std::vector<HostileAnswer> HostileAnswers() {
  const std::string open(200'000, '(');
  return {
      {"200 000 nested bodies", "UID FETCH", Say("* 1 FETCH (UID 1 BODYSTRUCTURE " + open + ")\r\n"), "nested"},
      {"the same behind what looks like a literal", "UID FETCH",
       Say("* OK {200100}\r\n* 1 FETCH (UID 1 BODYSTRUCTURE " + open + "\r\n"), "nested"},
      {"the same behind a quoted line end", "UID FETCH",
       Say("* 1 FETCH (UID 1 ENVELOPE (\"\r\n* 1 FETCH (BODYSTRUCTURE \"" + open + "\r\n"), "quoted string"},
      {"a broken body of allowed depth", "UID FETCH",
       Say("* 1 FETCH (UID 1 BODYSTRUCTURE " + std::string(400, '(') + "x)\r\n"), "protocol"},
      {"a broken message in messages of allowed depth", "UID FETCH",
       Say("* 1 FETCH (UID 1 BODYSTRUCTURE " +
           Many("(\"message\" \"rfc822\" NIL NIL NIL \"7bit\" 1 (NIL NIL NIL NIL NIL NIL NIL NIL NIL NIL) ", 400) +
           "x)\r\n"),
       "protocol"},
      {"a line without end", "UID SEARCH",
       [](Talk& talk, const std::string&) {
         talk.Send("* SEARCH");
         while (talk.Send(std::string(65536, '1'))) continue;
       },
       "line of more bytes"},
      {"an answer without end", "UID SEARCH",
       [](Talk& talk, const std::string&) {
         const auto lines = Many("* 3 EXISTS\r\n", 1000);
         while (talk.Send(lines)) continue;
       },
       ""},
      {"a huge literal", "UID FETCH", Say("* 1 FETCH (UID 1 RFC822.SIZE {4000000000}\r\n"), "literal"},
      {"lasting flags that are none", "EXAMINE", Say("* 3 EXISTS\r\n* OK [PERMANENTFLAGS ((] x\r\n"), "flags"},
      {"another protocol", "UID FETCH", Say("HTTP/1.1 200 OK\r\n\r\n<html>", false), ""},
      {"random bytes", "EXAMINE", Say(std::string("\0\xFF\x80(\"{\r\n\x01)))", 13), false), ""},
      {"another tag", "EXAMINE", Say("X99 OK done\r\n", false), "protocol"},
      {"silence", "UID SEARCH", [](Talk& talk, const std::string&) { talk.Hang(); }, "did not answer in time"},
      {"silence at the greeting", "GREETING", [](Talk& talk, const std::string&) { talk.Hang(); },
       "did not answer in time"},
      {"a byte now and then", "UID SEARCH",
       [](Talk& talk, const std::string&) {
         while (talk.Send(" ")) std::this_thread::sleep_for(milliseconds(100));
       },
       "took too long"},
      {"a greeting that sends away", "GREETING", Say("* BYE too busy\r\n", false), "ended the session"},
      {"BYE in the middle", "UID SEARCH", Say("* BYE down for repairs\r\n", false), ""},
      {"hanging up", "UID SEARCH", [](Talk& talk, const std::string&) { talk.Close(); }, "closed the connection"},
      {"hanging up in the middle of a line", "UID FETCH",
       [](Talk& talk, const std::string&) {
         talk.Send("* 1 FETCH (UID 1 RFC822.SIZE 1");
         talk.Close();
       },
       "closed the connection"},
      {"hanging up in the middle of a literal", "UID FETCH",
       [](Talk& talk, const std::string&) {
         talk.Send("* 1 FETCH (UID 1 ENVELOPE (NIL {5000}\r\nabc");
         talk.Close();
       },
       ""},
      {"a refusal with bytes that do not print", "EXAMINE",
       [](Talk& talk, const std::string& tag) { talk.Send(tag + " NO \x1B[31m<b>\r\n"); }, "?[31m\u2039b\u203A"},
  };
}

// "hanging up in the middle of a line" as the name of a case: HangingUpInTheMiddleOfALine.
std::string CaseName(const testing::TestParamInfo<HostileAnswer>& info) {
  std::string name;
  bool begins = true;
  for (const char c : info.param.what) {
    if (c == ' ') {
      begins = true;
    } else {
      name += begins ? static_cast<char>(std::toupper(c)) : c;
      begins = false;
    }
  }
  return name;
}

class AnAnswer : public HostileServer, public testing::WithParamInterface<HostileAnswer> {};

TEST_P(AnAnswer, GivesAnErrorInTimeAndTheNextPageWorks) {
  server_.Misbehave(GetParam().command, GetParam().answer);
  const auto begin = Clock::now();
  const auto page = Page();
  EXPECT_LT(Clock::now() - begin, milliseconds(15'000));
  EXPECT_NE(page.find("The mail server 127.0.0.1:"), std::string::npos) << page;
  EXPECT_NE(page.find(GetParam().words), std::string::npos) << page;
  server_.Behave();
  // For a while nobody asks a server that was silent again; then it is heard.
  EXPECT_TRUE(Eventually([&] { return Page() == good_; })) << Page();
}

INSTANTIATE_TEST_SUITE_P(Of, AnAnswer, testing::ValuesIn(HostileAnswers()), CaseName);

}  // namespace
}  // namespace kalvo::test
