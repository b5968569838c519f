#include "host/parts/places.h"

#include <gtest/gtest.h>

namespace kalvo::test {
namespace {

using namespace host;

TEST(Places, AreWordsThatNameADatabaseOrMailboxes) {
  const struct {
    const char* word;
    bool database, mail, imap;
  } kCases[] = {
      {"odbc", true, false, false},       {"odbc:", false, false, false},     {"sqlite:kalvo.db", true, false, false},
      {"sqlite:", false, false, false},   {"SQLITE:x", false, false, false},  {"maildir:/mail", false, true, false},
      {"maildir:", false, false, false},  {"imap://host", false, true, true}, {"imaps://host", false, true, true},
      {"imap:host", false, false, false}, {"", false, true, false},           {"mysql:x", false, false, false},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(NamesDatabase(c.word), c.database) << c.word;
    EXPECT_EQ(NamesMail(c.word), c.mail) << c.word;
    EXPECT_EQ(NamesImap(c.word), c.imap) << c.word;
  }
}

TEST(Places, HaveAPathBehindTheirScheme) {
  EXPECT_EQ(PathBehind(kSqlite, "sqlite:data/kalvo.db"), "data/kalvo.db");
  EXPECT_EQ(PathBehind(kMaildir, "sqlite:data/kalvo.db"), "");
  EXPECT_EQ(PathBehind(kSqlite, "sqlite:"), "");
}

TEST(Places, StartAtAFolder) {
  const struct {
    const char *why, *word, *rebased;
  } kCases[] = {
      {"a path below it", "sqlite:data/../kalvo.db", "sqlite:/site/kalvo.db"},
      {"a path of its own", "maildir:/mail", "maildir:/mail"},
      {"no path", "odbc", "odbc"},
      {"a path that is missing", "sqlite:", "sqlite:"},
      {"an address", "imap://admin@host/?directory=d", "imap://admin@host/?directory=d"},
  };
  for (const auto& c : kCases) EXPECT_EQ(Rebased(c.word, "/site"), c.rebased) << c.why;
}

}  // namespace
}  // namespace kalvo::test
