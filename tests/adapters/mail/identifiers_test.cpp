#include "adapters/mail/identifiers.h"

#include <gtest/gtest.h>

#include "kalvo/platform/error.h"
#include "support/error_of.h"

namespace kalvo::test {

using namespace mail;

namespace {

constexpr IdentifierKey kKey = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
constexpr IdentifierKey kOtherKey = {1};

const Binding kAlice{kKey, "EX01", "alice"};

TEST(Identifiers, GiveBackWhatTheyStandFor) {
  for (const std::string& folder :
       {std::string(), std::string("INBOX"), std::string("a\0b\xFF", 4), std::string(300, 'x')}) {
    EXPECT_EQ(ReadFolderIdentifier(kAlice, FolderIdentifier(kAlice, folder)), folder);
    const MessageKeys keys = ReadMessageIdentifier(kAlice, MessageIdentifier(kAlice, folder, "m1"));
    EXPECT_EQ(keys.folder, folder);
    EXPECT_EQ(keys.message, "m1");
  }
}

TEST(Identifiers, AreRefusedInAnyOtherPlace) {
  const std::string id = FolderIdentifier(kAlice, "INBOX");
  EXPECT_EQ(ReadFolderIdentifier({kKey, "ex01", "alice"}, id), "INBOX") << "servers without regard to case";
  for (const Binding& other :
       {Binding{kOtherKey, "EX01", "alice"}, Binding{kKey, "EX02", "alice"}, Binding{kKey, "EX01", "bob"},
        Binding{kKey, "EX01a", "lice"}, Binding{kKey, "EX01", ""}}) {
    EXPECT_THROW(ReadFolderIdentifier(other, id), Error);
  }
  EXPECT_THROW(ReadMessageIdentifier(kAlice, id), Error) << "a folder is no message";
}

TEST(Identifiers, NoChangedOneIsTaken) {
  const std::string id = MessageIdentifier(kAlice, "INBOX", "1234.host");
  for (std::size_t at = 0; at < id.size(); ++at) {
    for (const char c : {'A', 'b', '7', '-', '_', '=', ' ', '\0'}) {
      if (id[at] == c) continue;
      std::string changed = id;
      changed[at] = c;
      EXPECT_THROW(ReadMessageIdentifier(kAlice, changed), Error) << at << c;
    }
    EXPECT_THROW(ReadMessageIdentifier(kAlice, id.substr(0, at)), Error) << at;
  }
  EXPECT_THROW(ReadMessageIdentifier(kAlice, id + "A"), Error);
}

TEST(Identifiers, TheRefusalIsThatThereIsNoSuchFolder) {
  const Error error = ErrorOf([&] { ReadFolderIdentifier(kAlice, "made up"); });
  EXPECT_EQ(error.Number(), codes::kNoSuchFolder);
}

TEST(Identifiers, TheCheckIsThePublishedOne) {
  const CheckValue example = {0x54, 0x93, 0xE9, 0x99, 0x33, 0xB0, 0xA8, 0x11,
                              0x7E, 0x08, 0xEC, 0x0F, 0x97, 0xCF, 0xC3, 0xD9};
  const CheckValue nothing = {0xA3, 0x81, 0x7F, 0x04, 0xBA, 0x25, 0xA8, 0xE6,
                              0x6D, 0xF6, 0x72, 0x14, 0xC7, 0x55, 0x02, 0x93};
  std::string bytes;
  for (char c = 0; c < 15; ++c) bytes += c;
  EXPECT_EQ(KeyedHash(kKey, bytes), example) << "the example of its authors";
  EXPECT_EQ(KeyedHash(kKey, ""), nothing);
}

TEST(Identifiers, CarryTheWholeCheck) {
  EXPECT_EQ(FolderIdentifier(kAlice, "").size(), 22u) << "16 bytes";
  EXPECT_EQ(FolderIdentifier(kAlice, "INBOX").size(), 28u);
}

}  // namespace

}  // namespace kalvo::test
