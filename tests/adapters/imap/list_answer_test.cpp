// What servers say when they list folders with their states.
#include "adapters/imap/list_answer.h"

#include <gtest/gtest.h>

#include "kalvo/platform/append.h"

namespace kalvo::test {
namespace {

// The folders of an answer's lines: "name state", and "-" for one that is not to be opened.
std::string Read(const std::vector<std::string>& lines) {
  imap::ListAnswer answer;
  for (const std::string& line : lines) answer.Take(line);
  std::string all;
  for (const imap::Folder& folder : answer.Folders()) {
    Append(all, folder.name, folder.selectable ? "" : " -");
    if (folder.state) {
      Append(all, " ", folder.state->messages, "/", folder.state->uidNext, "/", folder.state->uidValidity);
    }
    if (folder.size) Append(all, " ", *folder.size);
    all += "|";
  }
  return all;
}

TEST(ListAnswer, IsReadAsServersWriteIt) {
  const struct {
    const char* why;
    std::vector<std::string> lines;
    const char* folders;
  } kCases[] = {
      {"a folder and its state",
       {R"(* LIST (\HasNoChildren) "/" INBOX)", "* STATUS INBOX (MESSAGES 3 UIDNEXT 4 UIDVALIDITY 7 SIZE 306)"},
       "INBOX 3/4/7 306|"},
      {"states after all names",
       {R"(* LIST () "/" a)", R"(* LIST () "/" "b c")", R"(* STATUS "b c" (MESSAGES 1))", "* STATUS a (SIZE 5)"},
       "a 0/0/0 5|b c 1/0/0|"},
      {"no state for one that may not be read", {R"(* LIST () "." Closed)"}, "Closed|"},
      {"names that cannot be opened",
       {R"(* LIST (\Noselect) "/" a)", R"(* LIST (\HasChildren \NonExistent) "/" b)"},
       "a -|b -|"},
      {"quotes and backslashes", {R"(* LIST () "/" "a\"b\\c")"}, R"(a"b\c|)"},
      {"a literal", {"* LIST () \"/\" {3}\r\na b", "* STATUS {3}\r\na b (MESSAGES 2)"}, "a b 2/0/0|"},
      {"no separator", {"* LIST () NIL a"}, "a|"},
      {"small letters", {R"(* list (\noselect) "/" a)", "* status a (messages 1)"}, "a - 1/0/0|"},
      {"other news", {"* 3 EXISTS", "* OK still here", "+ go on", ""}, ""},
      {"a state of nobody", {"* STATUS a (MESSAGES 2)"}, ""},
      {"a size that is no number", {R"(* LIST () "/" a)", "* STATUS a (MESSAGES x)"}, "a|"},
      {"more than any number", {R"(* LIST () "/" a)", "* STATUS a (SIZE 99999999999999999999)"}, "a|"},
      {"lines that are cut off",
       {"* LIST", "* LIST (", R"(* LIST () "/)", "* LIST () \"/\" {5}\r\nab", "* STATUS a ("},
       ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Read(c.lines), c.folders);
  }
}

TEST(ListAnswer, TellsWhatALineGoesOnWith) {
  EXPECT_EQ(imap::LiteralAtEnd("* LIST () \"/\" {12}"), 12u);
  for (const char* line : {"* LIST () \"/\" a", "{}", "{a}", "{1} ", "}", "", "{99999999999999999999}"}) {
    EXPECT_EQ(imap::LiteralAtEnd(line), std::nullopt) << line;
  }
}

}  // namespace
}  // namespace kalvo::test
