#pragma once

#include <cstdint>
#include <memory>

#include "kalvo/platform/locale.h"

namespace kalvo {
class Database;
class TopNFactory;
}  // namespace kalvo

namespace kalvo::ranking {

// How many rows a Top-N has.
inline constexpr std::int32_t kRankedRows = 100;

// A message is old that was last modified so many days before its server's last detail scan.
inline constexpr std::int32_t kOldDays = 90;

// What a host may choose. A report has no more rows, and knows no other age, than the scanner has ranked.
struct Settings {
  std::int32_t rows = kRankedRows;              // at least 1
  std::int32_t oldDays = kOldDays;              // at least 0
  const Locale& locale = kEnglishUnitedStates;  // in which the database writes dates
};

// The Top-N loader over the rankings in the reporting database. A load opens a connection of its own and closes
// it again. The database outlives the factory and whatever it has made.
std::unique_ptr<TopNFactory> MakeRanking(Database& database, const Settings& settings = {});

}  // namespace kalvo::ranking
