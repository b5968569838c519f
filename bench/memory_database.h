#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kalvo/platform/clock.h"
#include "kalvo/platform/database.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/platform.h"
#include "kalvo/platform/ranking.h"

// A reporting database in memory: every statement answers the same rows, so that a benchmark times what is done
// with rows and not what it takes to fetch them.
namespace kalvo::bench {

struct MemoryTable {
  std::vector<std::string> fields;
  std::vector<std::vector<std::string>> rows;
};

class MemoryRows : public Rows {
 public:
  explicit MemoryRows(const MemoryTable& table) : table_(table) {}
  std::int32_t RowCount() const override { return static_cast<std::int32_t>(table_.rows.size()); }
  std::int32_t FieldCount() const override { return static_cast<std::int32_t>(table_.fields.size()); }
  std::string_view Text(std::int32_t field, std::int32_t row, std::string&) const override {
    return table_.rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(field)];
  }
  std::optional<std::span<const std::uint8_t>> Binary(std::int32_t, std::int32_t) const override {
    return std::nullopt;
  }

 private:
  const MemoryTable& table_;
};

class MemoryRecordSet : public RecordSet {
 public:
  explicit MemoryRecordSet(const MemoryTable& table) : table_(table), rows_(table) {}
  bool IsEmpty() override { return table_.rows.empty(); }
  std::int32_t FieldCount() override { return rows_.FieldCount(); }
  std::string FieldName(std::int32_t i) override { return table_.fields[static_cast<std::size_t>(i)]; }
  const Rows& GetRows() override { return rows_; }
  std::unique_ptr<RecordSet> NextRecordset() override { return std::make_unique<MemoryRecordSet>(table_); }
  void Close() override {}

 private:
  const MemoryTable& table_;
  MemoryRows rows_;
};

class MemoryDatabase : public Database {
 public:
  explicit MemoryDatabase(const MemoryTable& table) : table_(table) {}
  std::unique_ptr<Connection> Connect(std::string_view) override { return std::make_unique<Open>(table_); }

 private:
  class Open : public Connection {
   public:
    explicit Open(const MemoryTable& table) : table_(table) {}
    std::unique_ptr<RecordSet> Execute(const Batch&) override { return std::make_unique<MemoryRecordSet>(table_); }
    void Close() override {}

   private:
    const MemoryTable& table_;
  };

  const MemoryTable& table_;
};

class NoTopN : public TopNFactory {
 public:
  std::shared_ptr<RankedResults> NewResults() override { throw CannotCreateObject(); }
  std::shared_ptr<TopNLoader> NewServerLoader() override { throw CannotCreateObject(); }
  std::shared_ptr<TopNLoader> NewMailboxGroupLoader() override { throw CannotCreateObject(); }
};

class StoppedClock : public Clock {
 public:
  Date Now() override { return {36000}; }
  float Timer() override { return 0; }
};

// A platform that reads its rows from memory.
struct MemoryParts {
  explicit MemoryParts(Database& database) : platform{database, topN, clock} {}
  NoTopN topN;
  StoppedClock clock;
  Platform platform;
};

}  // namespace kalvo::bench
