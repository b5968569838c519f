#include "adapters/odbc/odbc_record_set.h"

#include "adapters/odbc/attribute_calls.h"
#include "adapters/sql/diagnostics.h"
#include "adapters/sql/report_record_set.h"
#include "adapters/sql/shape.h"

namespace kalvo::odbc {

OdbcRecordSet::OdbcRecordSet(std::shared_ptr<Session> session, const sql::StatementQueue& statements)
    : session_(std::move(session)),
      following_(statements.Rest()),
      cursor_(std::make_unique<Cursor>(session_, statements.Front())),
      isEmpty_(cursor_->IsEmpty()) {}

Cursor& OdbcRecordSet::OpenCursor() const {
  if (!cursor_) throw ObjectNotSet();
  return *cursor_;
}

std::int32_t OdbcRecordSet::FieldCount() { return static_cast<std::int32_t>(OpenCursor().Columns().size()); }

std::string OdbcRecordSet::FieldName(std::int32_t i) {
  if (i < 0 || i >= FieldCount()) throw SubscriptOutOfRange();
  return cursor_->Columns()[static_cast<std::size_t>(i)].name;
}

const Rows& OdbcRecordSet::GetRows() {
  if (!rows_) rows_ = OpenCursor().FetchAll();
  return *rows_;
}

std::unique_ptr<RecordSet> OdbcRecordSet::NextRecordset() {
  OpenCursor();
  return std::make_unique<OdbcRecordSet>(session_, following_);
}

void OdbcRecordSet::Close() {
  OpenCursor();
  rows_.reset();
  cursor_.reset();
  session_.reset();
}

namespace {

class Runner final : public sql::ReportRunner {
 public:
  explicit Runner(std::shared_ptr<Session> session) : session_(std::move(session)) {}

  sql::NullOrder Nulls() const override {
    return session_->GetEngine() == Engine::PostgreSql ? sql::NullOrder::Said : sql::NullOrder::First;
  }
  // SQLite's driver tells the type of a computed column by the first row of what it reads.
  std::int32_t WindowRows() const override {
    return session_->GetEngine() == Engine::Sqlite ? 0 : session_->WindowRows();
  }

 private:
  void BeginSnapshot() override { session_->BeginSnapshot(); }
  std::int32_t CountColumns(const std::string& statement) override { return odbc::CountColumns(*session_, statement); }
  std::unique_ptr<RecordSet> Run(const std::string& statement) override {
    return std::make_unique<OdbcRecordSet>(session_, sql::StatementQueue({statement}));
  }

  const std::shared_ptr<Session> session_;
};

}  // namespace

std::unique_ptr<RecordSet> OdbcConnection::Execute(const Batch& batch) {
  if (!session_) throw sql::ConnectionError("08003", "The connection is closed.");
  const sql::StatementQueue statements(sql::CheckedStatements(batch));
  if (session_->GetEngine() == Engine::PostgreSql) RefuseCalls(session_, batch);
  if (!batch.readInPages || session_->GetEngine() == Engine::Other) {
    return std::make_unique<OdbcRecordSet>(session_, statements);
  }
  return std::make_unique<sql::ReportRecordSet>(std::make_shared<Runner>(session_), statements, batch.firstRow);
}

}  // namespace kalvo::odbc
