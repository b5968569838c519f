// Servers that hang, hang up, or say what no server should: the page gets an error in time, and the next one works.
#include <gtest/gtest.h>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

#include <chrono>
#include <cstdlib>
#include <iterator>
#include <random>
#include <thread>

#include "adapters/imap/fake_mail_server.h"
#include "adapters/imap/imap_under_test.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/live_mailbox.h"
#include "support/patience.h"
#include "support/temporary_folder.h"

// The mail library keeps a greeting that sends us away, some fifty bytes each time.
extern "C" const char* __lsan_default_suppressions() { return "leak:mailimap_greeting_new\n"; }

namespace kalvo::tests {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

class HostileServer : public ::testing::Test {
 protected:
  void SetUp() override {
    store_ = std::make_shared<imap::ImapStore>(
        imap::ReadSettings(StoreAddress(folder_.Path().string(), server_.Port(), "&silence=1&time-limit=3")));
  }

  // Lists the inbox as a page does: its rows' texts, or the error's.
  std::string Page() {
    try {
      const auto live = Browse(store_);
      live->GotoContainer("EX01", "alice", "Inbox", 0, live::kByPath);
      const auto messages = live->Messages();
      messages->AddSortField("Name", 0);
      messages->Sort();
      std::string page = std::to_string(live->MessageCount());
      for (int i = 0; i < messages->Count(); ++i, messages->MoveNext()) page += ", " + ToText(messages->Field("Name"));
      return page + ", " + ToText(messages->Total("Size"));
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), codes::kFailed);
      return error.Description();
    }
  }

  const std::string good_ = "3, Subject 1, Subject 2, Subject 3, 306";
  test::TemporaryFolder folder_;
  FakeMailServer server_;
  std::shared_ptr<imap::ImapStore> store_;
};

std::string Many(std::string_view text, int times) {
  std::string all;
  all.reserve(text.size() * static_cast<std::size_t>(times));
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

FakeMailServer::Answer Say(std::string text, bool done = true) {
  return [text = std::move(text), done](Talk& talk, const std::string& tag) {
    talk.Send(text + (done ? tag + " OK done\r\n" : ""));
  };
}

TEST_F(HostileServer, BehavesAtFirst) { EXPECT_EQ(Page(), good_); }

TEST_F(HostileServer, GivesAnErrorInTimeAndTheNextPageWorks) {
  const std::string open(200'000, '(');
  const struct {
    const char* why;
    const char* command;
    FakeMailServer::Answer answer;
    const char* words;
  } kCases[] = {
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
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    SetUp();
    server_.Misbehave(c.command, c.answer);
    const auto begin = Clock::now();
    const auto page = Page();
    EXPECT_LT(Clock::now() - begin, milliseconds(15'000));
    EXPECT_NE(page.find("The mail server 127.0.0.1:"), std::string::npos) << page;
    EXPECT_NE(page.find(c.words), std::string::npos) << page;
    server_.Behave();
    // For a while nobody asks a server that was silent again; then it is heard.
    EXPECT_TRUE(test::Eventually([&] { return Page() == good_; })) << Page();
  }
}

TEST_F(HostileServer, AMessageThatCannotBeReadIsARowThatSaysSo) {
  const std::string open(200'000, '(');
  const auto row = [](const std::string& uid) {
    return "* " + uid + " FETCH (UID " + uid + " ENVELOPE (NIL \"Subject " + uid +
           "\" NIL NIL NIL NIL NIL NIL NIL NIL) BODYSTRUCTURE (\"text\" \"plain\" NIL NIL NIL \"7bit\" 5 1))\r\n";
  };
  // The second message has a structure that nobody reads; sizes and dates are told well.
  server_.Misbehave("UID FETCH", [&](Talk& talk, const std::string& tag) {
    const std::string command = server_.Commands().back();
    std::string answer;
    for (const char* uid : {"1", "2", "3"}) {
      const std::string asked = command.substr(10, command.find(' ', 10) - 10);
      const bool wanted = asked == "1:3" || asked.find(uid) != asked.npos || (asked == "1:2" && *uid < '3') ||
                          (asked == "2:3" && *uid > '1');
      if (!wanted) continue;
      if (command.find("ENVELOPE") == command.npos) {
        answer +=
            "* 1 FETCH (UID " + std::string(uid) + " RFC822.SIZE 100 INTERNALDATE \"01-Jan-1999 00:00:00 +0000\")\r\n";
      } else {
        answer += *uid == '2' ? "* 2 FETCH (UID 2 BODYSTRUCTURE " + open + "\r\n" : row(uid);
      }
    }
    talk.Send(answer + tag + " OK done\r\n");
  });
  EXPECT_EQ(Page(), "3, (this message cannot be read), Subject 1, Subject 3, 300");
}

TEST_F(HostileServer, WhatItSaysReachesNoPageAsMarkup) {
  const std::string evil = "<script>x()</script>";
  for (const char* command : {"LOGIN", "CAPABILITY", "LIST", "EXAMINE", "UID SEARCH", "UID FETCH"}) {
    SCOPED_TRACE(command);
    SetUp();
    server_.Misbehave(command, [&](Talk& talk, const std::string& tag) { talk.Send(tag + " NO " + evil + "\r\n"); });
    const std::string page = Page();
    EXPECT_NE(page.find("\u2039script\u203A"), page.npos) << page;
    EXPECT_EQ(page.find('<'), page.npos) << page;
  }
  server_.Behave();
  SetUp();
  const auto live = Browse(store_);
  try {
    live->GotoContainer("EX01", "alice", evil, 0, live::kByPath);
    ADD_FAILURE();
  } catch (const Error& error) {
    EXPECT_EQ(error.Description(), "There is no folder \"\u2039script\u203Ax()\u2039/script\u203A\".");
  }
  EXPECT_EQ(imap::ImapError(imap::Fault::Lost, evil).Description().find('<'), std::string::npos);
}

TEST_F(HostileServer, OnlyTheFirstQuestionOfAPageWaitsForASilentOne) {
  server_.Misbehave("EXAMINE", [](Talk& talk, const std::string&) { talk.Hang(); });
  const auto begin = Clock::now();
  Page();
  const auto first = Clock::now() - begin;
  const auto asked = server_.Commands().size();
  EXPECT_NE(Page().find("did not answer in time"), std::string::npos);
  const bool stillSilent = Clock::now() - begin < first + milliseconds(1000);
  EXPECT_TRUE(!stillSilent || server_.Commands().size() == asked) << "the second did not ask it";
}

TEST_F(HostileServer, AStepThatTakesTooLongKeepsNobodyElseFromTheServer) {
  server_.Misbehave("UID SEARCH", [](Talk& talk, const std::string&) {
    while (talk.Send(" ")) std::this_thread::sleep_for(milliseconds(100));
  });
  EXPECT_NE(Page().find("took too long"), std::string::npos);
  server_.Behave();
  EXPECT_EQ(Page(), good_) << "at once";
}

TEST_F(HostileServer, ARefusedLoginIsNotTriedTwiceByAPage) {
  server_.Misbehave("LOGIN",
                    [](Talk& talk, const std::string& tag) { talk.Send(tag + " NO Authentication failed\r\n"); });
  EXPECT_NE(Page().find("Authentication failed (LOGIN)"), std::string::npos) << Page();
  EXPECT_EQ(server_.Connections(), 1);
}

TEST_F(HostileServer, OneThatHangsUpAtTheLoginMayNotHaveTheMailbox) {
  server_.Misbehave("LOGIN", [](Talk& talk, const std::string&) { talk.Close(); });
  EXPECT_NE(Page().find(" closed the connection (LOGIN). Does it have this mailbox?"), std::string::npos) << Page();
}

TEST_F(HostileServer, ALostConnectionIsOpenedAgainOnce) {
  EXPECT_EQ(Page(), good_);
  EXPECT_EQ(server_.Connections(), 1);
  int hangUps = 1;
  server_.Misbehave("EXAMINE", [&](Talk& talk, const std::string& tag) {
    if (hangUps-- > 0) return talk.Close();
    talk.Send("* 3 EXISTS\r\n* OK [UIDVALIDITY 7] ok\r\n* OK [UIDNEXT 4] ok\r\n" + tag + " OK done\r\n");
  });
  EXPECT_EQ(Page(), good_);
  EXPECT_EQ(server_.Connections(), 2);
  server_.Misbehave("EXAMINE", [](Talk& talk, const std::string&) { talk.Close(); });
  EXPECT_NE(Page().find("closed the connection"), std::string::npos);
  EXPECT_EQ(server_.Connections(), 3);
}

TEST_F(HostileServer, AnswersAboutOtherMessagesAreNotBelieved) {
  server_.Misbehave("UID FETCH", Say("* 1 FETCH (UID 77 RFC822.SIZE 5 INTERNALDATE \"01-Jan-1999 00:00:00 +0000\")\r\n"
                                     "* 2 FETCH (FLAGS (\\Seen))\r\n"));
  EXPECT_EQ(Page(), "0, 0");
}

TEST_F(HostileServer, WithoutUidplusNothingIsDeleted) {
  const auto live = Browse(store_);
  live->GotoContainer("EX01", "alice", "Inbox", 0, live::kByPath);
  const auto id = ToText(live->Messages()->Field("ExchangeId"));
  server_.Misbehave("CAPABILITY", Say("* CAPABILITY IMAP4rev1 SORT\r\n"));
  try {
    live->RemoveMessage("EX01", "alice", "", id, 0);
    ADD_FAILURE() << "deleted";
  } catch (const Error& error) {
    EXPECT_NE(error.Description().find("UIDPLUS"), std::string::npos);
  }
  for (const auto& command : server_.Commands()) {
    EXPECT_TRUE(command.find("STORE") == command.npos && command.find("EXPUNGE") == command.npos) << command;
  }
}

TEST_F(HostileServer, ADeletedMessageIsHeld) {
  const auto live = Browse(store_);
  live->GotoContainer("EX01", "alice", "Inbox", 0, live::kByPath);
  live->RemoveMessage("EX01", "alice", "", ToText(live->Messages()->Field("ExchangeId")), 0);
  EXPECT_TRUE(server_.Held().starts_with("X-Kalvo-Held: ")) << server_.Held();
  EXPECT_TRUE(server_.Held().ends_with("\r\nSubject: 3\r\n\r\nx\r\n")) << server_.Held();
}

TEST_F(HostileServer, ADeleteWhoseAnswerIsLostIsNotDoneTwice) {
  const auto live = Browse(store_);
  live->GotoContainer("EX01", "alice", "Inbox", 0, live::kByPath);
  const auto id = ToText(live->Messages()->Field("ExchangeId"));
  server_.Misbehave("UID EXPUNGE", [&](Talk& talk, const std::string&) {
    server_.Remove("3");
    talk.Close();
  });
  live->RemoveMessage("EX01", "alice", "", id, 0);
  int expunges = 0;
  for (const auto& command : server_.Commands()) expunges += command.starts_with("UID EXPUNGE 3") ? 1 : 0;
  EXPECT_EQ(expunges, 1);
  EXPECT_NE(server_.Held(), "");
}

TEST_F(HostileServer, WhatIsNotKeptAsItWasSentIsNotDeleted) {
  const struct {
    const char *why, *command, *answer;
  } kCases[] = {
      {"it refuses to keep it", "APPEND", "NO [OVERQUOTA] <b>"},
      {"it refuses the folder", "CREATE", "NO no"},
      {"it refuses to show it", "SELECT \"Kalvo held\"", "NO no"},
      {"it hangs up", "APPEND", ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    SetUp();
    server_.Behave();
    const auto live = Browse(store_);
    live->GotoContainer("EX01", "alice", "Inbox", 0, live::kByPath);
    const auto id = ToText(live->Messages()->Field("ExchangeId"));
    const std::size_t before = server_.Commands().size();
    server_.Misbehave(c.command, [&](Talk& talk, const std::string& tag) {
      if (*c.answer == '\0') return talk.Close();
      talk.Send(tag + " " + c.answer + "\r\n");
    });
    try {
      live->RemoveMessage("EX01", "alice", "", id, 0);
      ADD_FAILURE() << "deleted";
    } catch (const Error& error) {
      EXPECT_TRUE(error.Description().starts_with("The message was not deleted, because it cannot be held."))
          << error.Description();
      EXPECT_EQ(error.Description().find('<'), std::string::npos);
    }
    const auto commands = server_.Commands();
    for (std::size_t i = before; i < commands.size(); ++i) {
      EXPECT_FALSE(commands[i].starts_with("UID STORE 3") || commands[i].starts_with("UID EXPUNGE 3")) << commands[i];
    }
  }
}

TEST_F(HostileServer, ACopyThatDiffersIsNone) {
  const auto live = Browse(store_);
  live->GotoContainer("EX01", "alice", "Inbox", 0, live::kByPath);
  const auto id = ToText(live->Messages()->Field("ExchangeId"));
  server_.Misbehave("UID FETCH 1 ", Say("* 1 FETCH (UID 1 FLAGS () BODY[]<0> {3}\r\nbad)\r\n"));
  try {
    live->RemoveMessage("EX01", "alice", "", id, 0);
    ADD_FAILURE() << "deleted";
  } catch (const Error& error) {
    EXPECT_EQ(error.Description(),
              "The message was not deleted, because it cannot be held. What the holding folder keeps differs from the "
              "message.");
  }
  EXPECT_EQ(server_.Held(), "") << "and is not left behind";
}

// The mail library loses pieces of answers that break off; our own leaks are looked for everywhere else.
struct LibraryLeaks {
#ifdef __SANITIZE_ADDRESS__
  LibraryLeaks() { __lsan_disable(); }
  ~LibraryLeaks() { __lsan_enable(); }
#endif
};

// Whatever comes, the process stays and says what it made of it.
TEST_F(HostileServer, AnswersWithErrorsInThemAreSurvived) {
  [[maybe_unused]] const LibraryLeaks ignored;
  std::mt19937 random(20260101);
  const std::string pieces[] = {
      "(",    ")",    "\"",         "\\",    "{3}\r\nabc", "{0}\r\n",          "NIL",
      " ",    "\r\n", "4294967296", "-1",    "* ",         "=?utf-8?B?//8=?=", std::string(1, '\0'),
      "\xFF", "%",    "[",          "BODY[]"};
  const std::string answers[] = {
      "* 1 FETCH (UID 1 RFC822.SIZE 101 INTERNALDATE \"01-Jan-1999 00:00:00 +0000\" ENVELOPE (\"Fri, 01 Jan 1999 "
      "00:00:00 +0000\" \"S\" ((\"N\" NIL \"a\" \"b.example\")) ((NIL NIL \"g\" NIL)) NIL NIL NIL NIL NIL \"<i>\") "
      "BODYSTRUCTURE ((\"text\" \"plain\" (\"charset\" \"utf-8\") NIL NIL \"7bit\" 5 1 NIL NIL NIL NIL)(\"message\" "
      "\"rfc822\" NIL NIL NIL \"7bit\" 9 (NIL {3}\r\nabc NIL NIL NIL NIL NIL NIL NIL NIL) (\"text\" \"html\" NIL NIL "
      "NIL "
      "\"7bit\" 5 1) 2)(\"application\" \"pdf\" (\"name\" \"a\") NIL NIL \"base64\" 99 NIL (\"attachment\" "
      "(\"filename*0*\" \"utf-8''%C3\" \"filename*1\" \"b\")) (\"en\" \"de\") \"loc\" (1 \"x\" (2 NIL))) \"mixed\" "
      "(\"boundary\" \"b\") NIL NIL NIL))\r\n",
      "* 3 EXISTS\r\n* FLAGS (\\Seen $X)\r\n* OK [UIDVALIDITY 7] ok\r\n* OK [UIDNEXT 4] ok\r\n* OK [PERMANENTFLAGS "
      "(\\Seen \\*)] x\r\n",
      "* LIST (\\HasChildren) \"/\" \"INBOX\"\r\n* LIST (\\Noselect) \"/\" {3}\r\nabc\r\n* LIST () NIL x\r\n",
      "* SEARCH 1 2 3\r\n",
      "* CAPABILITY IMAP4rev1 UIDPLUS SORT NAMESPACE ACL AUTH=PLAIN\r\n",
      "* OK [CAPABILITY IMAP4rev1] ready\r\n"};
  const char* commands[] = {"UID FETCH", "EXAMINE", "LIST", "UID SEARCH", "CAPABILITY", "GREETING"};
  for (int round = test::Rounds(100, 5000); round > 0; --round) {
    const auto which = random() % std::size(answers);
    auto answer = answers[which];
    for (auto changes = 1 + random() % 3; changes > 0; --changes) {
      const auto at = random() % answer.size();
      switch (random() % 3) {
        case 0: answer.replace(at, 1, pieces[random() % std::size(pieces)]); break;
        case 1: answer.erase(at, 1 + random() % 10); break;
        default: answer.insert(at, answer.substr(random() % answer.size(), random() % 30));
      }
      if (answer.empty()) answer = " ";
    }
    SCOPED_TRACE(answer);
    SetUp();
    server_.Misbehave(commands[which], [&](Talk& talk, const std::string& tag) {
      talk.Send(answer + (tag.empty() ? "" : tag + " OK done\r\n"));
      talk.Close();
    });
    EXPECT_NE(Page(), "");
  }
}

TEST_F(HostileServer, AMessageThatIsStillThereWasNotDeleted) {
  const auto live = Browse(store_);
  live->GotoContainer("EX01", "alice", "Inbox", 0, live::kByPath);
  const auto id = ToText(live->Messages()->Field("ExchangeId"));
  server_.Misbehave("UID EXPUNGE 3", Say(""));
  try {
    live->RemoveMessage("EX01", "alice", "", id, 0);
    ADD_FAILURE() << "deleted";
  } catch (const Error& error) {
    EXPECT_EQ(error.Description(), "The mail server did not delete the message.");
  }
  EXPECT_EQ(server_.Held(), "");
}

}  // namespace
}  // namespace kalvo::tests
