#include "adapters/imap/held_copy.h"

#include <gtest/gtest.h>

namespace kalvo::test {

using namespace imap;

namespace {

constexpr mail::IdentifierKey kKey = {1, 2, 3}, kOtherKey = {1, 2, 4};

mail::HeldMessage Held() {
  mail::HeldMessage held;
  held.id = "00112233445566778899aabbccddeeff";
  held.server = "EX01";
  held.mailbox = "al;ice";
  held.folder = {"Inbox", "a;b"};
  held.subject = std::string(500, ';') + "\r\nX-Kalvo-Held: evil";
  held.deletion = {"KALVO\\alice", 1'700'000'000};
  return held;
}

TEST(HeldCopy, TheLinesSayWhatTheyWereMadeOf) {
  const std::string lines = HeldLines(Held(), kKey);
  const auto read = ReadHeldLines(lines, kKey);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->id, Held().id);
  EXPECT_EQ(read->mailbox, "al;ice");
  EXPECT_EQ(read->folder, Held().folder);
  EXPECT_EQ(read->subject, Held().subject);
  EXPECT_EQ(read->deletion.when, 1'700'000'000);
}

TEST(HeldCopy, TheLinesAreHeaderLinesOfALengthThatServersTake) {
  const std::string lines = HeldLines(Held(), kKey);
  for (std::size_t at = 0; at < lines.size();) {
    const std::size_t end = lines.find("\r\n", at);
    ASSERT_NE(end, lines.npos);
    EXPECT_EQ(lines.substr(at, 14), "X-Kalvo-Held: ");
    EXPECT_LT(end - at, 998u);
    at = end + 2;
  }
}

TEST(HeldCopy, TheMessageBehindThemStaysWhatItIs) {
  const std::string lines = HeldLines(Held(), kKey);
  for (const std::string& message :
       {std::string("Subject: s\r\n\r\nx"), std::string(), std::string("\r\nbody"), std::string(" folded\r\n"),
        lines + "x", std::string("X-Kalvo-Held: mine\r\n\r\n"), std::string("\0\0", 2)}) {
    SCOPED_TRACE(message);
    const std::string copy = lines + message;
    EXPECT_EQ(copy.substr(HeldLinesLength(copy)), message);
    EXPECT_TRUE(ReadHeldLines(copy, kKey)) << "and says nothing of where it came from";
  }
}

TEST(HeldCopy, LinesOfOthersAreNotBelieved) {
  const std::string lines = HeldLines(Held(), kKey);
  EXPECT_FALSE(ReadHeldLines(lines, kOtherKey));
  EXPECT_FALSE(ReadHeldLines("X-Kalvo-Held: held=1;id=00112233445566778899aabbccddeeff;end=1\r\n", kKey));
  EXPECT_FALSE(ReadHeldLines("", kKey));
  EXPECT_FALSE(ReadHeldLines("Subject: s\r\n" + lines, kKey)) << "not at the front";
  for (std::size_t at = 14; at < lines.size(); at += 11) {
    std::string changed = lines;
    changed[at] = '!';
    EXPECT_FALSE(ReadHeldLines(changed, kKey)) << at;
    EXPECT_FALSE(ReadHeldLines(lines.substr(0, at), kKey)) << at;
  }
}

}  // namespace

}  // namespace kalvo::test
