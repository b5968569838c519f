#pragma once

#include <memory>
#include <string>
#include <vector>

#include "adapters/sql/block_store.h"
#include "adapters/sql/statement_queue.h"
#include "adapters/sqlite/connection.h"
#include "kalvo/platform/database.h"

namespace kalvo::sqlite {

// The result of the first statement of a queue. Stands on the first row when it is made, so that an error of
// running the statement is an error of making it.
class SqliteRecordSet final : public RecordSet {
 public:
  SqliteRecordSet(std::shared_ptr<Session> session, const sql::StatementQueue& statements);

  bool IsEmpty() override { return isEmpty_; }
  std::int32_t FieldCount() override;
  std::string FieldName(std::int32_t i) override;
  const Rows& GetRows() override;
  std::unique_ptr<RecordSet> NextRecordset() override;
  void Close() override;

 private:
  // How a text of a column may be a date: SQLite has no dates of its own.
  enum class DateRule { Never, AnyIsoForm, ExactForm };

  sqlite3_stmt* OpenStatement() const;
  DateRule DateRuleOf(int column) const;
  std::unique_ptr<sql::BlockStore> FetchAll();
  void AddCell(sql::BlockStore& rows, int column);
  void AddText(sql::BlockStore& rows, int column, std::string_view text);

  std::shared_ptr<Session> session_;
  sql::StatementQueue following_;
  Statement statement_;
  bool isEmpty_ = true;
  std::vector<DateRule> dateRules_;
  std::unique_ptr<sql::BlockStore> rows_;  // made by the first `GetRows`
};

}  // namespace kalvo::sqlite
