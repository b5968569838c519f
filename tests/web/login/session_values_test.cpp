#include "host/web/login/session_values.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/error.h"

namespace kalvo::web::login {
namespace {

std::int32_t NumberOf(const std::function<void()>& step) {
  try {
    step();
  } catch (const Error& error) {
    return error.Number();
  }
  return 0;
}

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
  EXPECT_EQ(NumberOf([&] { values.Set("x", std::shared_ptr<Object>(std::make_shared<Thing>())); }), 13);
  EXPECT_EQ(NumberOf([&] { values.Set("x", Bytes{1, 2}); }), 13);
  EXPECT_EQ(values.Get("x"), Value());
}

TEST(SessionValues, AreLimited) {
  SessionValues values;
  EXPECT_EQ(NumberOf([&] { values.Set(std::string(kLongestName + 1, 'n'), true); }), codes::kFailed);
  EXPECT_EQ(NumberOf([&] { values.Set("x", std::string(kLargestSession, 'x')); }), codes::kFailed);
  EXPECT_EQ(values.Get("x"), Value()) << "what was refused is not there";
  for (std::size_t i = 0; i < kMostValues; ++i) values.Set(std::to_string(i), true);
  EXPECT_EQ(NumberOf([&] { values.Set("one more", true); }), codes::kFailed);
  EXPECT_EQ(NumberOf([&] { values.Set("7", false); }), 0) << "a value may change";
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
}  // namespace kalvo::web::login
