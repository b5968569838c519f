#include "host/audit/record.h"

#include <gtest/gtest.h>

namespace kalvo::test {
namespace {

using namespace audit;

Record Sample() {
  return {7,
          "2026-11-21T16:40:00.123Z",
          Event::SignedIn,
          {"KALVO\\alice", "127.0.0.1"},
          {{"page", "/SignIn.asp"}},
          std::string(kNoHash),
          {}};
}

TEST(Record, IsOneLineOfJsonWithItsHashAtTheEnd) {
  EXPECT_EQ(LineOf(Sample()),
            "{\"number\":7,\"time\":\"2026-11-21T16:40:00.123Z\",\"event\":\"signed-in\",\"user\":\"KALVO\\\\alice\","
            "\"address\":\"127.0.0.1\",\"details\":{\"page\":\"/SignIn.asp\"},\"previous\":\"" +
                std::string(64, '0') +
                "\",\"hash\":\"477a80246dbcee5e1797a55db72ba862bd2bb0dd4ae2d6525636af098af0bcc7\"}");
}

TEST(Record, TextsAreCleanedAndCut) {
  const struct {
    const char* why;
    std::string value, written;
  } kCases[] = {
      {"quotes and backslashes", "a\"b\\c", R"("a\"b\\c")"},
      {"control characters", std::string("a\nb\0c\x7f", 6), R"("a\u000ab\u0000c\u007f")"},
      {"control characters above ASCII", "\xC2\x85", R"("\u0085")"},
      {"line separators and turned text", "\xE2\x80\xA8\xE2\x80\xAE\xE2\x81\xA6", R"("\u2028\u202e\u2066")"},
      {"what is ill-formed", "a\xFF", "\"a\xEF\xBF\xBD\""},
      {"any other character", "\xE6\x9D\xB1\xF0\x9F\x98\x80", "\"\xE6\x9D\xB1\xF0\x9F\x98\x80\""},
      {"a long value", std::string(5000, 'x'), '"' + std::string(4093, 'x') + "...\""},
      {"a long value of wide characters", "x" + std::string(5000, '\x85'), ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    Record record = Sample();
    record.details = {{"value", c.value}};
    const std::string line = LineOf(record);
    if (!c.written.empty()) {
      EXPECT_NE(line.find("\"details\":{\"value\":" + c.written + "}"), std::string::npos) << line;
    }
    const auto read = ReadLine(line);
    ASSERT_TRUE(read);
    EXPECT_EQ(LineOf(*read), line);
    EXPECT_LE(read->Detail("value").size(), kLongestValue);
  }
}

TEST(Record, IsReadBackAsItWasWritten) {
  const auto read = ReadLine(LineOf(Sample()));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->number, 7);
  EXPECT_EQ(read->event, Event::SignedIn);
  EXPECT_EQ(read->visitor.user, "KALVO\\alice");
  EXPECT_EQ(read->visitor.address, "127.0.0.1");
  EXPECT_EQ(read->Detail("page"), "/SignIn.asp");
  EXPECT_EQ(read->Detail("other"), "");
}

TEST(Record, AnyChangedByteMakesTheLineUnreadable) {
  const std::string line = LineOf(Sample());
  for (std::size_t i = 0; i < line.size(); ++i) {
    std::string changed = line;
    changed[i] = static_cast<char>(changed[i] ^ 1);
    EXPECT_FALSE(ReadLine(changed)) << i;
    EXPECT_FALSE(ReadLine(line.substr(0, i))) << i;
  }
  for (const std::string& text :
       {line + " ", " " + line, line + line, std::string(), std::string("{}"), std::string("\\")}) {
    EXPECT_FALSE(ReadLine(text)) << text;
  }
}

TEST(Record, TheLongestLineCanBeReadBack) {
  Record record = Sample();
  record.visitor = {std::string(9000, '\1'), std::string(9000, '\1')};
  record.details.clear();
  for (int i = 0; i < 40; ++i) record.details.emplace_back("name", std::string(9000, '\1'));
  const auto read = ReadLine(LineOf(record));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->details.size(), kMostDetails);
}

TEST(Events, AreKnownByTheirNames) {
  EXPECT_EQ(NameOf(Event::DeleteIntended), "delete-intended");
  EXPECT_EQ(EventNamed("line-torn"), Event::LineTorn);
  EXPECT_EQ(EventNamed("Line-Torn"), std::nullopt);
  EXPECT_EQ(IntentOf(Event::DeleteFailed), Event::DeleteIntended);
  EXPECT_EQ(IntentOf(Event::SignedIn), std::nullopt);
}

}  // namespace
}  // namespace kalvo::test
