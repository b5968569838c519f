#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kalvo/platform/clock.h"
#include "kalvo/platform/database.h"
#include "kalvo/platform/platform.h"
#include "kalvo/platform/ranking.h"

namespace kalvo {

// Rows as texts, as many in each as there are fields; "" stands for null too.
struct MemoryTable {
  std::vector<std::string> fields;
  std::vector<std::vector<std::string>> rows;
};

// A reporting database in memory, for whoever has the rows of a report already: every report answers the same rows, in
// the order in which they stand, and the same totals. It outlives its connections.
class MemoryDatabase : public Database {
 public:
  // Totals without a row are those of a report that has none.
  explicit MemoryDatabase(MemoryTable rows, MemoryTable totals = {})
      : rows_(std::move(rows)), totals_(std::move(totals)) {}

  std::unique_ptr<Connection> Connect(std::string_view dataSource) override;

 private:
  const MemoryTable rows_, totals_;
};

// The part of a platform that ranks nothing: each object fails with 429.
class NoTopN : public TopNFactory {
 public:
  std::shared_ptr<RankedResults> NewResults() override;
  std::shared_ptr<TopNLoader> NewServerLoader() override;
  std::shared_ptr<TopNLoader> NewMailboxGroupLoader() override;
};

// A clock that always tells midnight of one day.
class StoppedClock : public Clock {
 public:
  Date Now() override { return {36000}; }
  float Timer() override { return 0; }
};

// A platform that reads its reports from a database and has nothing else. The database outlives it.
struct MemoryParts {
  explicit MemoryParts(Database& database) : platform{database, topN, clock} {}
  MemoryParts(const MemoryParts&) = delete;
  MemoryParts& operator=(const MemoryParts&) = delete;

  NoTopN topN;
  StoppedClock clock;
  Platform platform;
};

}  // namespace kalvo
