#pragma once

#include <map>
#include <memory>
#include <string>

#include "kalvo/platform/database.h"

// A database that asks another one once: the record sets of a batch are fetched when it first comes, and every later
// connection is given the same rows. So rendering is timed over rows exactly as an adapter keeps them.
namespace kalvo::peers {

class KeptDatabase : public Database {
 public:
  explicit KeptDatabase(Database& database) : database_(database) {}

  std::unique_ptr<Connection> Connect(std::string_view dataSource) override {
    return std::make_unique<Open>(*this, dataSource);
  }

 private:
  // Members end in turn: the record sets before their connection.
  struct Kept {
    std::unique_ptr<Connection> connection;
    std::unique_ptr<RecordSet> rows, totals;
  };

  class Borrowed : public RecordSet {
   public:
    Borrowed(RecordSet& records, RecordSet* next) : records_(records), next_(next) {}
    bool IsEmpty() override { return records_.IsEmpty(); }
    std::int32_t FieldCount() override { return records_.FieldCount(); }
    std::string FieldName(std::int32_t i) override { return records_.FieldName(i); }
    const Rows& GetRows() override { return records_.GetRows(); }
    std::unique_ptr<RecordSet> NextRecordset() override { return std::make_unique<Borrowed>(*next_, nullptr); }
    void Close() override {}

   private:
    RecordSet& records_;
    RecordSet* next_;
  };

  class Open : public Connection {
   public:
    Open(KeptDatabase& owner, std::string_view dataSource) : owner_(owner), dataSource_(dataSource) {}
    std::unique_ptr<RecordSet> Execute(const Batch& batch) override {
      Kept& kept = owner_.kept_[std::string(batch.sql)];
      if (!kept.rows) Fetch(kept, batch);
      return std::make_unique<Borrowed>(*kept.rows, kept.totals.get());
    }
    void Close() override {}

   private:
    void Fetch(Kept& kept, const Batch& batch) const {
      kept.connection = owner_.database_.Connect(dataSource_);
      kept.rows = kept.connection->Execute(batch);
      kept.rows->GetRows();
      kept.totals = kept.rows->NextRecordset();
      kept.totals->GetRows();
    }

    KeptDatabase& owner_;
    std::string dataSource_;
  };

  Database& database_;
  std::map<std::string, Kept, std::less<>> kept_;
};

}  // namespace kalvo::peers
