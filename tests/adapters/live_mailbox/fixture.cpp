#include "adapters/live_mailbox/fixture.h"

namespace kalvo::test {

namespace {

constexpr std::string_view kDirectory = R"(# The servers and mailboxes of the tests.
[server EX01]
public = %EX01%

[server EX02]

[mailbox Alice Archer]
server = EX01
account = KALVO\alice
address = alice@kalvo.example
address = archer@kalvo.example
dn = /o=Kalvo/ou=First/cn=Recipients/cn=alice
location = alice

[mailbox Bob Brown]
server = EX01
account = KALVO\bob
address = bob@kalvo.example
location = bob

[mailbox Ken]
server = EX01
account = KALVO\ken
address = ken@kalvo.example
location = ken

[mailbox KenH]
server = EX01
account = KALVO\kenh
address = kenh@kalvo.example
location = kenh

[mailbox Zoe Miller]
server = EX02
account = KALVO\zoe
address = zoe@kalvo.example
location = zoe
)";

constexpr std::string_view kApple =
    "From: Carol Clark <carol@kalvo.example>\nTo: alice@kalvo.example\nSubject: apple\n"
    "Date: Mon, 04 Jan 1999 10:00:00 +0000\nMIME-Version: 1.0\n"
    "Content-Type: multipart/mixed; boundary=\"b1\"\n\n"
    "--b1\nContent-Type: text/plain\n\nThe figures.\n"
    "--b1\nContent-Type: application/octet-stream; name=\"Budget 1999.xls\"\n"
    "Content-Disposition: attachment; filename=\"Budget 1999.xls\"\nContent-Transfer-Encoding: base64\n\n"
    "QUJDREVGR0hJSktMTU5PUFFSU1RVVldYWVpBQkNERUZHSElKS0xNTk9QUVJTVFVWV1hZWkFC\nQ0RFRkdISUpLTE1OT1BRUg==\n"
    "--b1\nContent-Type: text/plain; name=\"notes.txt\"\n"
    "Content-Disposition: attachment; filename=\"notes.txt\"\n\nabc\n--b1--\n";

std::string Plain(std::string_view headers, std::size_t bodyLines) {
  std::string text(headers);
  text += "\n";
  for (std::size_t i = 0; i < bodyLines; ++i) text += "A line of the body, always of the same length.\n";
  return text;
}

std::vector<FixtureMessage> AlicesMessages() {
  return {
      {{"Inbox"},
       Plain("From: Bob Brown <bob@kalvo.example>\nSubject: Zebra\nDate: Sat, 02 Jan 1999 12:00:00 +0000\n", 40),
       915278400},
      {{"Inbox"}, std::string(kApple), 915444000},
      {{"Inbox"},
       Plain("From: =?utf-8?Q?J=C3=BCrgen?= <j@kalvo.example>\nSubject: =?utf-8?B?R3LDvMOfZSBhdXMgS8O2bG4=?=\n"
             "Date: Sun, 03 Jan 1999 08:30:00 +0100\n",
             2),
       915348600},
      {{"Inbox"}, Plain("From: nobody@kalvo.example\n", 1), 915500000},
      {{"Inbox"},
       Plain("From: dave@kalvo.example\nSubject: Apple\nDate: Tue, 05 Jan 1999 00:00:00 +0000\n", 3),
       915494400},
      {{"Inbox"},
       Plain("From: eve@kalvo.example\nSubject: <b>Bold</b> & \"quoted\"\nDate: Wed, 06 Jan 1999 00:00:00 +0000\n", 5),
       915580800},
      {{"Inbox", "Projects"},
       Plain("From: bob@kalvo.example\nSubject: Plan\nDate: Fri, 01 Jan 1999 00:00:00 +0000\n", 4),
       915148800},
  };
}

std::string Replaced(std::string text, std::string_view what, std::string_view by) {
  return text.replace(text.find(what), what.size(), by);
}

}  // namespace

std::string FixtureDirectory(std::string_view publicLocation) {
  return Replaced(std::string(kDirectory), "%EX01%", publicLocation);
}

const std::vector<FixtureTree>& FixtureTrees() {
  static const std::vector<FixtureTree> trees = {
      {"alice",
       false,
       {{"Inbox", "Projects"},
        {"Empty"},
        {"Entw\xC3\xBCrfe"},
        {"\xD0\x9E\xD1\x82\xD1\x87\xD1\x91\xD1\x82\xD1\x8B"},
        {"Say \"hi\" & <go>"},
        {"Sent Items"},
        {"back\\slash"}},
       AlicesMessages()},
      {"bob",
       false,
       {},
       {{{"Inbox"},
         Plain("From: alice@kalvo.example\nSubject: For Bob\nDate: Fri, 01 Jan 1999 00:00:00 +0000\n", 1),
         915148800}}},
      {"ken", false, {}, {}},
      {"kenh", false, {}, {}},
      {"zoe", false, {}, {}},
      {"EX01",
       true,
       {{"Sales"}, {"Sales", "Orders"}},
       {{{"Sales"},
         Plain("From: bob@kalvo.example\nSubject: Prices\nDate: Fri, 01 Jan 1999 00:00:00 +0000\n", 2),
         915148800},
        {{"Sales", "Orders"},
         Plain("From: bob@kalvo.example\nSubject: Order 1\nDate: Sat, 02 Jan 1999 00:00:00 +0000\n", 2),
         915235200}}},
  };
  return trees;
}

}  // namespace kalvo::test
