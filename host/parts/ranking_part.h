#pragma once

#include <memory>

namespace kalvo {
class Database;
struct Locale;
class TopNFactory;
}  // namespace kalvo

namespace kalvo::host {

// The Top-N loader over the reporting database; one whose every object fails with 429 where the build has none.
std::unique_ptr<TopNFactory> MakeRanking(Database& database, const Locale& locale);

}  // namespace kalvo::host
