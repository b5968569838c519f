#include "adapters/mail/directory.h"

#include <gtest/gtest.h>

#include "adapters/mail/directory_file.h"
#include "kalvo/platform/error.h"
#include "support/error_of.h"

namespace kalvo::test {

using namespace mail;

namespace {

std::string Refusal(std::string_view text) {
  return ErrorOf([&] { ReadDirectory("mailboxes.txt", text); }).Description();
}

TEST(DirectoryFile, IsRead) {
  const Directory directory = ReadDirectory("mailboxes.txt",
                                            "# comment\r\n[server EX01]\r\npublic = pub\n\n[mailbox  Smith & Sons ]\n"
                                            "server=ex01\naccount = D\\smith\naddress = a@b\naddress = c@d\n"
                                            "dn = /o=x\nlocation = EX01/smith");
  ASSERT_EQ(directory.Mailboxes().size(), 1u);
  const Mailbox& mailbox = directory.Mailboxes().front();
  EXPECT_EQ(mailbox.name, "Smith & Sons");
  EXPECT_EQ(mailbox.server, "EX01");
  EXPECT_EQ(mailbox.account, "D\\smith");
  EXPECT_EQ(mailbox.Address(), "a@b");
  EXPECT_EQ(mailbox.addresses.size(), 2u);
  EXPECT_EQ(directory.Server("ex01").publicFolders, "pub");
}

TEST(DirectoryFile, TellsWhereAndWhatIsWrong) {
  const struct {
    const char *text, *refusal;
  } cases[] = {
      {"x", "mailboxes.txt:1: expected \"[server NAME]\", \"[mailbox NAME]\" or \"key = value\""},
      {"\n[server ]", "mailboxes.txt:2: a heading is \"[server NAME]\" or \"[mailbox NAME]\""},
      {"[server A", "mailboxes.txt:1: a heading ends with \"]\""},
      {"[folder A]", "mailboxes.txt:1: a heading is \"[server NAME]\" or \"[mailbox NAME]\""},
      {"[server A]\n[server a]", "mailboxes.txt:2: this server was named before"},
      {"public = x", "mailboxes.txt:1: a setting stands below a heading"},
      {"[server A]\nowner = x", "mailboxes.txt:2: a server has only the setting \"public\""},
      {"[server A]\npublic =", "mailboxes.txt:2: the value is missing"},
      {"[server A]\npublic = x\npublic = y", "mailboxes.txt:3: this setting was given before"},
      {"[mailbox M]\nserver = B", "mailboxes.txt:2: there is no server of this name above"},
      {"[mailbox M]\ncolour = red",
       "mailboxes.txt:2: a mailbox has the settings server, account, address, dn and location"},
      {"[mailbox M]\naddress = \"a\"@b",
       "mailboxes.txt:2: an address is name@domain, without blanks, quotes, angle brackets and \"&\""},
      {"[mailbox M]\naddress = nobody",
       "mailboxes.txt:2: an address is name@domain, without blanks, quotes, angle brackets and \"&\""},
      {"[server A]\n[mailbox M]\nserver = A\n", "mailboxes.txt:2: this mailbox has no account"},
      {"[server A]\n[mailbox M]\nserver = A\naccount = x\naddress = a@b\n",
       "mailboxes.txt:2: this mailbox has no location"},
      {"[server A\x01]", "mailboxes.txt:1: a control character in the line"},
  };
  for (const auto& c : cases) EXPECT_EQ(Refusal(c.text), c.refusal);
  EXPECT_EQ(Refusal(""), "");
}

TEST(Directory, AnAccountWithoutDomainCountsWhereNoNameBeginsSo) {
  const Directory directory({{"A", ""}}, {{"A", "Robert Smith", "D\\bob", {"r@x"}, "", "r"},
                                          {"A", "Bobby Tables", "D\\tables", {"t@x"}, "", "t"}});
  EXPECT_EQ(directory.Find("A", "bob").name, "Bobby Tables");
  EXPECT_EQ(directory.Find("A", "tables").name, "Bobby Tables");
  EXPECT_EQ(directory.Find("A", "d\\BOB").name, "Robert Smith");
}

TEST(Directory, AnyDistinguishedNameIsFound) {
  for (const char* name : {"/o=x/cn=ann", "uid=ann,ou=people,dc=x", "cn=Ann Archer", "ann"}) {
    const Directory directory({{"A", ""}}, {{"A", "Bob", "D\\bob", {"b@x"}, "cn=Ann", "b"},
                                            {"A", "Someone Else", "D\\x", {"a@x"}, name, "a"}});
    EXPECT_EQ(directory.Find("A", name).location, "a") << name;
  }
}

TEST(Directory, TheProductsMailboxIsNeverFound) {
  const Directory directory({{"A", ""}}, {{"A", "Kalvo A", "D\\k", {"k@x"}, "", "k"}});
  for (const char* typed : {"Kalvo A", "kalvo a", "=Kalvo A"}) {
    EXPECT_THROW(directory.Find("A", typed), Error);
    EXPECT_THROW(directory.Resolve("A", typed), Error);
  }
  EXPECT_EQ(directory.Find("A", "k@x").name, "Kalvo A");
}

TEST(Directory, OfTwoMailboxesElsewhereNoneIsMeant) {
  const Directory directory({{"A", ""}, {"B", ""}, {"C", ""}},
                            {{"B", "Same", "D\\1", {"1@x"}, "", "1"}, {"C", "Same", "D\\2", {"2@x"}, "", "2"}});
  EXPECT_THROW(directory.Resolve("A", "Same"), Error);
  EXPECT_EQ(directory.Resolve("B", "Same").Address(), "1@x");
  EXPECT_EQ(directory.Resolve("A", "2@x").server, "C");
}

}  // namespace

}  // namespace kalvo::test
