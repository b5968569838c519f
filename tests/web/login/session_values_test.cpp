#include "host/web/login/session_values.h"

#include <gtest/gtest.h>

#include <limits>

#include "kalvo/platform/error.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using namespace web;
using namespace web::login;

TEST(SessionValues, KeepTheirTypesWhenPacked) {
  const Value kValues[] = {Null{},
                           true,
                           false,
                           std::int32_t{-7},
                           std::int64_t{1} << 60,
                           0.1,
                           std::numeric_limits<double>::infinity(),
                           Date{36162.5},
                           std::string(),
                           std::string("a\0b\n\xC3\xBC", 6)};
  SessionValues values;
  int number = 0;
  for (const Value& value : kValues) values.Set("Name " + std::to_string(number++), value);
  const auto back = SessionValues::Unpacked(values.Packed());
  ASSERT_TRUE(back);
  number = 0;
  for (const Value& value : kValues) EXPECT_EQ(back->Get("nAME " + std::to_string(number++)), value);
}

TEST(SessionValues, AreEmptyWhenNobodySetThem) {
  SessionValues values;
  EXPECT_EQ(values.Get("x"), Value());
  values.Set("x", std::int32_t{1});
  values.Set("X", Empty{});
  EXPECT_EQ(values.Get("x"), Value());
  EXPECT_EQ(values.Packed(), "");
}

TEST(SessionValues, HoldNoObjectsAndNoBytes) {
  class Thing : public Object {};
  SessionValues values;
  EXPECT_EQ(ErrorOf([&] { values.Set("x", std::shared_ptr<Object>(std::make_shared<Thing>())); }).Number(), 13);
  EXPECT_EQ(ErrorOf([&] { values.Set("x", Bytes{1, 2}); }).Number(), 13);
  EXPECT_EQ(values.Get("x"), Value());
}

// What a session of one name, as long as that, unpacks to: the same bytes that were packed, or nothing.
bool IsTakenBack(std::size_t nameLength, std::size_t textLength) {
  std::string packed;
  for (const auto& [text, tag] :
       {std::pair(std::string(nameLength, 'n'), "s"), std::pair(std::string(textLength, 't'), "")}) {
    const auto size = static_cast<std::uint32_t>(text.size());
    packed.append(reinterpret_cast<const char*>(&size), sizeof size).append(text).append(tag);
  }
  const auto back = SessionValues::Unpacked(packed);
  return back && back->Packed() == packed;
}

TEST(SessionValues, HaveNamesOf256BytesAtMost) {
  SessionValues values;
  EXPECT_EQ(ErrorOf([&] { values.Set(std::string(256, 'n'), true); }).Number(), 0);
  EXPECT_EQ(values.Get(std::string(256, 'N')), Value(true));
  EXPECT_EQ(ErrorOf([&] { values.Set(std::string(257, 'n'), true); }).Number(), codes::kFailed);
  EXPECT_EQ(values.Get(std::string(257, 'n')), Value()) << "what was refused is not there";
  EXPECT_TRUE(IsTakenBack(256, 1));
  EXPECT_FALSE(IsTakenBack(257, 1));
}

TEST(SessionValues, Are256AtMost) {
  SessionValues values;
  for (int i = 0; i < 256; ++i) EXPECT_EQ(ErrorOf([&] { values.Set(std::to_string(i), true); }).Number(), 0) << i;
  EXPECT_EQ(ErrorOf([&] { values.Set("one more", true); }).Number(), codes::kFailed);
  EXPECT_EQ(ErrorOf([&] { values.Set("7", false); }).Number(), 0) << "a value may change";
  EXPECT_EQ(values.Get("7"), Value(false));
  const std::string packed = values.Packed();
  EXPECT_TRUE(SessionValues::Unpacked(packed));
  SessionValues more;
  more.Set("another", Null{});
  EXPECT_FALSE(SessionValues::Unpacked(packed + more.Packed()));
}

TEST(SessionValues, Take64KibibytesAtMost) {
  const std::size_t around = 4 + 1 + 1 + 4;  // the name's length, the name "x", the type, the text's length
  SessionValues values;
  EXPECT_EQ(ErrorOf([&] { values.Set("x", std::string(65'536 - around + 1, 'x')); }).Number(), codes::kFailed);
  EXPECT_EQ(values.Get("x"), Value()) << "what was refused is not there";
  EXPECT_EQ(ErrorOf([&] { values.Set("x", std::string(65'536 - around, 'x')); }).Number(), 0);
  EXPECT_EQ(values.Packed().size(), 65'536u);
  EXPECT_TRUE(IsTakenBack(1, 65'536 - around));
  EXPECT_FALSE(IsTakenBack(1, 65'536 - around + 1));
}

TEST(SessionValues, SayWhatTheyCannotHold) {
  SessionValues values;
  const auto text = [&](const std::string& name, const Value& value) {
    return ErrorOf([&] { values.Set(name, value); }).Description();
  };
  EXPECT_EQ(text(std::string(257, 'n'), true), "The session cannot hold a value whose name has more than 256 bytes.");
  EXPECT_EQ(text("x", std::string(70'000, 'x')), "The session cannot hold more than 64 KiB.");
  for (int i = 0; i < 256; ++i) values.Set(std::to_string(i), true);
  EXPECT_EQ(text("x", true), "The session cannot hold more than 256 values.");
}

TEST(SessionValues, AreNotReadFromBytesThatWereNotPackedSo) {
  SessionValues values;
  values.Set("name", std::string("text"));
  values.Set("number", std::int64_t{5});
  const std::string packed = values.Packed();
  for (std::size_t size = 1; size < packed.size(); ++size) {
    const auto cut = SessionValues::Unpacked(std::string_view(packed).substr(0, size));
    EXPECT_TRUE(!cut || cut->Get("number") == Value()) << size;
  }
  EXPECT_FALSE(SessionValues::Unpacked("\xFF\xFF\xFF\xFF"));
  EXPECT_FALSE(SessionValues::Unpacked(std::string("\1\0\0\0x?", 6)));
  EXPECT_FALSE(SessionValues::Unpacked(std::string(kLargestSession + 1, '\0')));
}

}  // namespace
}  // namespace kalvo::test
