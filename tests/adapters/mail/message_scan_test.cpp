#include "adapters/mail/message_scan.h"

#include <gtest/gtest.h>

#include "adapters/mail/mail_limits.h"

namespace kalvo::test {

using namespace mail;

namespace {

// Knows the one way to write it that these tests use: "multipart/b" has the boundary "b", "multipart/-b" is a digest.
std::optional<Multipart> AskMultipart(const Head& head) {
  const std::size_t at = head.contentType.find("multipart/");
  if (at == head.contentType.npos) return std::nullopt;
  const std::string name(head.contentType.substr(at + 10));
  if (name.starts_with('-')) return Multipart{name.substr(1), true};
  return Multipart{name, false};
}

// The leaves as "type=content|", "!" before the content of a message.
std::string Leaves(std::string_view message) {
  MessageScan scan(message, AskMultipart);
  std::string all;
  while (const auto leaf = scan.Next()) {
    all += std::string(leaf->head.contentType) + "=" + (leaf->isMessage ? "!" : "") + std::string(leaf->content) + "|";
  }
  return all;
}

TEST(MessageScan, TakesAMessageApart) {
  const struct {
    const char* why;
    std::string_view message, leaves;
  } cases[] = {
      {"no parts", "Subject: s\n\nbody\n", "=body\n|"},
      {"nothing", "", "=|"},
      {"no body", "Subject: s\n", "=|"},
      {"two parts", "Content-Type:multipart/b\n\n--b\nContent-Type:x\n\n1\n--b\n\n2\n--b--\n", "x=1|=2|"},
      {"line ends of two bytes", "Content-Type:multipart/b\r\n\r\n--b\r\nContent-Type:x\r\n\r\n1\r\n--b--\r\n", "x=1|"},
      {"what stands before and behind the parts is none",
       "Content-Type:multipart/b\n\npre\n--b\n\n1\n--b--\npost\n--b\n\n2\n", "=1|"},
      {"parts in parts",
       "Content-Type:multipart/a\n\n--a\nContent-Type:multipart/b\n\n--b\n\n1\n--b\n\n2\n--b--\nepi\n--a\n\n3\n--a--\n",
       "=1|=2|=3|"},
      {"an outer delimiter ends the inner parts",
       "Content-Type:multipart/a\n\n--a\nContent-Type:multipart/b\n\n--b\n\n1\n--a\n\n2\n--b\n\n3\n--a--\n",
       "=1|=2\n--b\n\n3|"},
      {"an end without its line", "Content-Type:multipart/b\n\n--b\n\n1\n", "=1\n|"},
      {"no closing delimiter", "Content-Type:multipart/b\n\n--b\n\n1\n--b\n\n2", "=1|=2|"},
      {"a delimiter may have blanks behind it", "Content-Type:multipart/b\n\n--b \t\n\n1\n--b-- \n", "=1|"},
      {"what only looks like one", "Content-Type:multipart/b\n\n--b\n\n--\n--bb\n--b-\n -- b\n--b---\n--b--\n",
       "=--\n--bb\n--b-\n -- b\n--b---|"},
      {"an empty part", "Content-Type:multipart/b\n\n--b\n\n--b--\n", "=|"},
      {"a delimiter ends a head", "Content-Type:multipart/b\n\n--b\nContent-Type:x\n--b\nContent-Type:y\n\n2\n--b--\n",
       "x=|y=2|"},
      {"parts of a digest are messages", "Content-Type:multipart/-b\n\n--b\n\n1\n--b--\n", "=!1|"},
      {"a message inside is one part",
       "Content-Type:multipart/b\n\n--b\nContent-Type:message\n\nContent-Type:multipart/"
       "b2\n\n--b2\n\n1\n--b2--\n--b--\n",
       "message=Content-Type:multipart/b2\n\n--b2\n\n1\n--b2--|"},
      {"no boundary, no parts", "Content-Type:multipart/\n\n--\n\n1\n----\n", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Leaves(c.message), c.leaves);
  }
}

TEST(MessageScan, ReadsTheFieldsOfAHead) {
  const auto head = [](std::string_view text) { return MessageScan(text, AskMultipart).Top(); };
  EXPECT_EQ(head("subject : a\n b\n\tc\nFROM:x\n\nSubject: body\n").subject, " a\n b\n\tc");
  EXPECT_EQ(head("subject : a\n b\n\tc\nFROM:x\n\nSubject: body\n").from, "x");
  EXPECT_EQ(head("Subject: 1\nSubject: 2\n\n").subject, " 1") << "the first counts";
  EXPECT_EQ(head("Subject:\nSubject: 2\n\n").subject, "");
  EXPECT_EQ(head("Subject: 1\r\nDate: d\r\n\r\n").subject, " 1");
  EXPECT_EQ(head(" Subject: no\nnonsense\nDate: d").date, " d");
  EXPECT_EQ(head("Subject").subject, "");
  EXPECT_EQ(head(std::string_view("a\0:\nDate: d\n\n", 13)).date, " d");
}

TEST(MessageScan, CutsAFieldWhereItGetsTooLong) {
  const auto subjectOf = [&](const std::string& text) {
    return std::string(MessageScan(text, AskMultipart).Top().subject);
  };
  EXPECT_EQ(subjectOf("Subject:" + std::string(70'000, 'x') + "\n\n").size(), mail::kLongestField - 8);
  EXPECT_EQ(subjectOf("Subject:" + std::string(mail::kLongestField - 8, 'x') + "\n\n").size(), mail::kLongestField - 8);
  std::string folded = "Subject:";
  for (int i = 0; i < 2000; ++i) folded += "\n x";
  EXPECT_EQ(subjectOf(folded + "\n\n").size(), 3u * (kMostFieldLines - 1)) << "the first thousand lines";
  EXPECT_EQ(subjectOf("To:" + std::string(200'000, 'x') + "\n" + folded.substr(0, 20) + "\n\n").size(), 12u)
      << "another one's length is its own";
}

TEST(MessageScan, LooksAtSoManyPartsAndNoMore) {
  std::string message = "Content-Type:multipart/b\n\n";
  for (int i = 0; i < 30'000; ++i) message += "--b\n\nx\n";
  MessageScan scan(message, AskMultipart);
  std::size_t leaves = 0;
  while (scan.Next()) ++leaves;
  EXPECT_EQ(leaves, mail::kMostParts - 1) << "the one that holds them counts";
  EXPECT_TRUE(scan.HasMore());
}

TEST(MessageScan, WhatIsNestedTooDeepHasNoParts) {
  const auto nested = [](std::size_t depth) {
    std::string message;
    for (std::size_t i = 0; i < depth; ++i) {
      message += "Content-Type:multipart/" + std::to_string(i) + "x\n\n--" + std::to_string(i) + "x\n";
    }
    return message + "\nleaf\n";
  };
  EXPECT_EQ(Leaves(nested(kDeepestParts)), "=leaf\n|");
  EXPECT_EQ(Leaves(nested(kDeepestParts + 1)), "");
}

}  // namespace

}  // namespace kalvo::test
