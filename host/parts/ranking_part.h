#pragma once

#include <memory>

namespace kalvo {
class Database;
class TopNFactory;
}  // namespace kalvo

namespace kalvo::ranking {
struct Settings;
}

namespace kalvo::host {

// The Top-N loader over the reporting database; one whose every object fails with 429 where the build has none.
std::unique_ptr<TopNFactory> MakeRanking(Database& database, const ranking::Settings& settings);

}  // namespace kalvo::host
