#pragma once

#include <memory>
#include <string>

#include "adapters/odbc/cursor.h"
#include "adapters/odbc/session.h"
#include "adapters/sql/statement_queue.h"
#include "kalvo/platform/database.h"

namespace kalvo::odbc {

// The result of the first statement of a queue.
class OdbcRecordSet final : public RecordSet {
 public:
  OdbcRecordSet(std::shared_ptr<Session> session, const sql::StatementQueue& statements);

  bool IsEmpty() override { return isEmpty_; }
  std::int32_t FieldCount() override;
  std::string FieldName(std::int32_t i) override;
  const Rows& GetRows() override;
  std::unique_ptr<RecordSet> NextRecordset() override;
  void Close() override;

 private:
  Cursor& OpenCursor() const;

  std::shared_ptr<Session> session_;
  sql::StatementQueue following_;
  std::unique_ptr<Cursor> cursor_;
  bool isEmpty_ = true;
  std::unique_ptr<sql::BlockStore> rows_;  // made by the first `GetRows`
};

class OdbcConnection final : public Connection {
 public:
  explicit OdbcConnection(std::shared_ptr<Session> session) : session_(std::move(session)) {}

  std::unique_ptr<RecordSet> Execute(const Batch& batch) override;
  void Close() override { session_.reset(); }

 private:
  std::shared_ptr<Session> session_;
};

}  // namespace kalvo::odbc
