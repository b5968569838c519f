#include "adapters/mail/held_message.h"

#include <gtest/gtest.h>

namespace kalvo::test {

using namespace mail;

namespace {

HeldMessage Full() {
  HeldMessage held;
  held.id = "00112233445566778899aabbccddeeff";
  held.server = "EX 01";
  held.mailbox = "EX01/al=ice%";
  held.folder = {"Inbox", "a/b", "Entw\xC3\xBCrfe"};
  held.folderKey = std::string(".a\0\n<b>", 7);
  held.name = "cur/1.host,S=5:2,RS";
  held.flags = "\\Seen $Label";
  held.subject = "two\r\nend=1 words";
  held.sender = "\xFF <a@b>";
  held.size = 5'000'000'000;
  held.sent = -86'400;
  held.received = 915'148'800;
  held.deletion = {"KALVO\\alice", 1'700'000'000};
  return held;
}

void ExpectSame(const HeldMessage& a, const HeldMessage& b) {
  for (const auto field : {&HeldMessage::id, &HeldMessage::server, &HeldMessage::mailbox, &HeldMessage::folderKey,
                           &HeldMessage::name, &HeldMessage::flags, &HeldMessage::subject, &HeldMessage::sender}) {
    EXPECT_EQ(a.*field, b.*field);
  }
  EXPECT_EQ(a.folder, b.folder);
  EXPECT_EQ(a.size, b.size);
  EXPECT_EQ(a.sent, b.sent);
  EXPECT_EQ(a.received, b.received);
  EXPECT_EQ(a.deletion.who, b.deletion.who);
  EXPECT_EQ(a.deletion.when, b.deletion.when);
}

TEST(HeldRecord, GivesBackWhatItWasMadeOf) {
  HeldMessage bare;
  bare.id = std::string(32, '0');
  for (const HeldMessage& held : {Full(), bare}) {
    const auto read = ReadHeldRecord(WriteHeldRecord(held));
    ASSERT_TRUE(read);
    ExpectSame(*read, held);
  }
}

TEST(HeldRecord, IsOneLineOfPrintableCharacters) {
  const std::string record = WriteHeldRecord(Full());
  for (const char c : record) EXPECT_TRUE(c >= ' ' && c < 0x7F) << record;
}

TEST(HeldRecord, ATornOneIsNone) {
  const std::string record = WriteHeldRecord(Full());
  for (std::size_t length = 0; length < record.size(); ++length) {
    EXPECT_FALSE(ReadHeldRecord(std::string_view(record).substr(0, length))) << length;
  }
  EXPECT_FALSE(ReadHeldRecord(record + " more=1"));
}

TEST(HeldRecord, OneThatMakesNoSenseIsNone) {
  const std::string id = " id=00112233445566778899aabbccddeeff";
  EXPECT_TRUE(ReadHeldRecord("held=1" + id + " end=1"));
  EXPECT_TRUE(ReadHeldRecord("held=1" + id + " later=x end=1")) << "what a later version adds is passed over";
  for (const std::string& record :
       {"held=2" + id + " end=1", id.substr(1) + " end=1", "held=1" + id + " size=x end=1",
        "held=1" + id + " size=99999999999999999999 end=1", "held=1" + id + " subject=%4 end=1",
        "held=1" + id + " folder=%zz/ end=1", "held=1" + id + " word end=1", std::string("held=1 end=1"),
        std::string("held=1 id=../../etc end=1")}) {
    EXPECT_FALSE(ReadHeldRecord(record)) << record;
  }
}

TEST(HeldIds, AreNeverGivenTwiceAndAreNoPaths) {
  EXPECT_NE(NewHeldId(), NewHeldId());
  EXPECT_TRUE(IsHeldId(NewHeldId()));
  for (const char* text : {"", "../../../../../../../../../../abcd", "00112233445566778899AABBCCDDEEFF",
                           "00112233445566778899aabbccddeef", "00112233445566778899aabbccddeeff0"}) {
    EXPECT_FALSE(IsHeldId(text)) << text;
  }
}

}  // namespace

}  // namespace kalvo::test
