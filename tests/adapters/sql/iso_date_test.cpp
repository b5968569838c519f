#include "adapters/sql/iso_date.h"

#include <gtest/gtest.h>

#include <string>

#include "kalvo/platform/conversion.h"

namespace kalvo::test {
namespace {

using namespace sql;

std::string Shown(std::optional<Date> date) { return date ? ToText(*date) : "no date"; }

TEST(IsoDate, Forms) {
  const struct {
    const char* text;
    const char* any;
    const char* exact;
  } kCases[] = {
      {"2024-02-03", "2/3/2024", "no date"},
      {"2024-02-03 10:04", "2/3/2024 10:04:00 AM", "no date"},
      {"2024-02-03 10:04:05", "2/3/2024 10:04:05 AM", "2/3/2024 10:04:05 AM"},
      {"2024-02-03 23:59", "2/3/2024 11:59:00 PM", "no date"},
      {"2024-02-03 10:04:05.1", "2/3/2024 10:04:05 AM", "no date"},
      {"2024-02-03 10:04:05x", "no date", "no date"},
      {"2024-02-03 10:04:0/", "no date", "no date"},
      {"2024-02-03 10:04:0:", "no date", "no date"},
      {"2024-02-03 19:09:09", "2/3/2024 7:09:09 PM", "2/3/2024 7:09:09 PM"},
      {"2024-02-03T10:04:05", "2/3/2024 10:04:05 AM", "no date"},
      {"2024-02-03 10:04:05.999", "2/3/2024 10:04:05 AM", "no date"},
      {"2024-02-03 00:00:00", "2/3/2024", "2/3/2024"},
      {"2024-02-30", "no date", "no date"},
      {"2024-02-30 10:04:05", "no date", "no date"},
      {"2024-02-03 24:00:00", "no date", "no date"},
      {"2024-02-03 10:04:05.", "no date", "no date"},
      {"2024-02-03 10:04:05.1x", "no date", "no date"},
      {"2024-02-03 ", "no date", "no date"},
      {"2024-02-03x10:04:05", "no date", "no date"},
      {" 2024-02-03", "no date", "no date"},
      {"2024-2-3", "no date", "no date"},
      {"", "no date", "no date"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(Shown(ParseIsoDate(c.text)), c.any);
    EXPECT_EQ(Shown(ParseIsoDateTime(c.text)), c.exact);
  }
}

}  // namespace
}  // namespace kalvo::test
