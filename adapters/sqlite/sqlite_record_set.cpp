#include "adapters/sqlite/sqlite_record_set.h"

#include "adapters/sql/iso_date.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::sqlite {

SqliteRecordSet::SqliteRecordSet(std::shared_ptr<Session> session, const sql::StatementQueue& statements)
    : session_(std::move(session)), following_(statements.Rest()) {
  session_->StartTimeLimit();
  statement_ = session_->Prepare(statements.Front());
  isEmpty_ = !session_->Step(statement_.get());
}

sqlite3_stmt* SqliteRecordSet::OpenStatement() const {
  if (!statement_) throw ObjectNotSet();
  return statement_.get();
}

std::int32_t SqliteRecordSet::FieldCount() { return sqlite3_column_count(OpenStatement()); }

std::string SqliteRecordSet::FieldName(std::int32_t i) {
  if (i < 0 || i >= FieldCount()) throw SubscriptOutOfRange();
  const char* name = sqlite3_column_name(statement_.get(), i);
  return name ? name : "";
}

const Rows& SqliteRecordSet::GetRows() {
  OpenStatement();
  if (!rows_) rows_ = FetchAll();
  return *rows_;
}

std::unique_ptr<RecordSet> SqliteRecordSet::NextRecordset() {
  OpenStatement();
  return std::make_unique<SqliteRecordSet>(session_, following_);
}

void SqliteRecordSet::Close() {
  OpenStatement();
  rows_.reset();
  statement_.reset();
  session_.reset();
}

// A computed column has no declared type; there a date is what has exactly the form that computing with dates gives.
SqliteRecordSet::DateRule SqliteRecordSet::DateRuleOf(int column) const {
  const char* declared = sqlite3_column_decltype(statement_.get(), column);
  if (!declared) return DateRule::ExactForm;
  const std::string type = ToLowerAscii(declared);
  return type.starts_with("date") || type.starts_with("timestamp") ? DateRule::AnyIsoForm : DateRule::Never;
}

std::unique_ptr<sql::BlockStore> SqliteRecordSet::FetchAll() {
  const int columns = FieldCount();
  auto rows = std::make_unique<sql::BlockStore>(columns, session_->GetLocale());
  dateRules_.clear();
  for (int column = 0; column < columns; ++column) dateRules_.push_back(DateRuleOf(column));
  session_->StartTimeLimit();
  for (bool row = !isEmpty_; row; row = session_->Step(statement_.get())) {
    for (int column = 0; column < columns; ++column) AddCell(*rows, column);
  }
  return rows;
}

void SqliteRecordSet::AddCell(sql::BlockStore& rows, int column) {
  sqlite3_stmt* statement = statement_.get();
  const int type = sqlite3_column_type(statement, column);
  if (type == SQLITE_INTEGER) return rows.AddInteger(sqlite3_column_int64(statement, column));
  if (type == SQLITE_FLOAT) return rows.AddDouble(sqlite3_column_double(statement, column));
  if (type == SQLITE_NULL) return rows.AddNull();
  const void* bytes =
      type == SQLITE_BLOB ? sqlite3_column_blob(statement, column) : sqlite3_column_text(statement, column);
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
  if (type == SQLITE_BLOB) return rows.AddBytes({static_cast<const std::uint8_t*>(bytes), size});
  AddText(rows, column, {static_cast<const char*>(bytes), size});
}

void SqliteRecordSet::AddText(sql::BlockStore& rows, int column, std::string_view text) {
  std::optional<Date> date;
  if (dateRules_[column] == DateRule::AnyIsoForm) date = sql::ParseIsoDate(text);
  if (dateRules_[column] == DateRule::ExactForm) date = sql::ParseIsoDateTime(text);
  date ? rows.AddDate(*date) : rows.AddText(text);
}

}  // namespace kalvo::sqlite
