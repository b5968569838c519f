#include "adapters/odbc/cursor.h"

#include <algorithm>

#include "adapters/odbc/odbc_diagnostics.h"
#include "adapters/sql/diagnostics.h"

namespace kalvo::odbc {

namespace {

constexpr std::size_t kBlockBytes = 1 << 20;
constexpr std::size_t kFewestRows = 16;
constexpr std::size_t kMostRows = 1000;
constexpr std::size_t kPieceBytes = 4096;

SQLPOINTER AsPointer(std::size_t number) { return reinterpret_cast<SQLPOINTER>(number); }

std::size_t BlockRows(const std::vector<Column>& columns) {
  std::size_t width = 0;
  for (const Column& column : columns) width += column.width + sizeof(SQLLEN);
  return std::clamp(kBlockBytes / std::max<std::size_t>(width, 1), kFewestRows, kMostRows);
}

// A driver counts the zero behind a text as part of its buffer.
std::size_t Capacity(const Column& column, std::size_t bytes) { return column.cType == SQL_C_CHAR ? bytes - 1 : bytes; }

}  // namespace

std::int32_t CountColumns(Session& session, const std::string& sql) {
  const StatementHandle statement(session.Get());
  if (!statement.Get()) throw sql::ConnectionError("HY001", "There is no memory for a statement.");
  SQLSMALLINT count = 0;
  session.Limited(statement.Get(), [&] {
    CheckStatement(SQLPrepare(statement.Get(), Bytes(sql), static_cast<SQLINTEGER>(sql.size())), statement.Get());
    CheckStatement(SQLNumResultCols(statement.Get(), &count), statement.Get());
  });
  return count;
}

Cursor::Cursor(std::shared_ptr<Session> session, const std::string& sql)
    : session_(std::move(session)), sql_(sql), statement_(session_->Get()) {
  if (!statement_.Get()) throw sql::ConnectionError("HY001", "There is no memory for a statement.");
  SQLSetStmtAttr(statement_.Get(), SQL_ATTR_NOSCAN, AsPointer(SQL_NOSCAN_ON), 0);
  session_->Limited(statement_.Get(), [&] {
    Run();
    columns_ = DescribeColumns(statement_.Get(), session_->GetEngine());
    inPieces_ = AnyLong();
    if (!inPieces_) Bind();
    if (!columns_.empty()) Fetch();
  });
}

Cursor::~Cursor() { SQLFreeStmt(statement_.Get(), SQL_CLOSE); }

void Cursor::Run() {
  CheckStatement(SQLExecDirect(statement_.Get(), Bytes(sql_), static_cast<SQLINTEGER>(sql_.size())), statement_.Get());
}

bool Cursor::AnyLong() const {
  return std::any_of(columns_.begin(), columns_.end(), [](const Column& column) { return column.width == 0; });
}

void Cursor::Bind() {
  const std::size_t rows = BlockRows(columns_);
  SQLSetStmtAttr(statement_.Get(), SQL_ATTR_ROW_BIND_TYPE, AsPointer(SQL_BIND_BY_COLUMN), 0);
  SQLSetStmtAttr(statement_.Get(), SQL_ATTR_ROWS_FETCHED_PTR, &fetched_, 0);
  CheckStatement(SQLSetStmtAttr(statement_.Get(), SQL_ATTR_ROW_ARRAY_SIZE, AsPointer(rows), 0), statement_.Get());
  buffers_.resize(columns_.size());
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    buffers_[i].values.resize(rows * columns_[i].width);
    buffers_[i].lengths.resize(rows);
    CheckStatement(
        SQLBindCol(statement_.Get(), static_cast<SQLUSMALLINT>(i + 1), columns_[i].cType, buffers_[i].values.data(),
                   static_cast<SQLLEN>(columns_[i].width), buffers_[i].lengths.data()),
        statement_.Get());
  }
}

void Cursor::Fetch() {
  fetched_ = inPieces_ ? 1 : 0;
  if (!CheckStatement(SQLFetch(statement_.Get()), statement_.Get())) fetched_ = 0;
}

std::unique_ptr<sql::BlockStore> Cursor::FetchAll() {
  const auto makeStore = [&] {
    return std::make_unique<sql::BlockStore>(static_cast<std::int32_t>(columns_.size()), session_->GetLocale());
  };
  auto rows = makeStore();
  session_->Limited(statement_.Get(), [&] {
    if (!inPieces_ && FetchBlocks(*rows) == Outcome::Complete) return;
    if (!inPieces_) {
      StartAnewInPieces();
      rows = makeStore();
    }
    FetchPieces(*rows);
  });
  return rows;
}

Cursor::Outcome Cursor::FetchBlocks(sql::BlockStore& rows) {
  for (; fetched_ > 0; Fetch()) {
    if (AddBlock(rows) == Outcome::ValueTooLong) return Outcome::ValueTooLong;
  }
  return Outcome::Complete;
}

Cursor::Outcome Cursor::AddBlock(sql::BlockStore& rows) const {
  for (SQLULEN row = 0; row < fetched_; ++row) {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      const Column& column = columns_[i];
      const SQLLEN length = buffers_[i].lengths[row];
      if (length == SQL_NULL_DATA) {
        rows.AddNull();
        continue;
      }
      const auto size = static_cast<std::size_t>(length);  // SQL_NO_TOTAL becomes very large
      if (size > Capacity(column, column.width)) return Outcome::ValueTooLong;
      AddValue(rows, column, {buffers_[i].values.data() + row * column.width, size});
    }
  }
  return Outcome::Complete;
}

// A database that does not keep a column to its declared length gave a value that is longer.
void Cursor::StartAnewInPieces() {
  SQLFreeStmt(statement_.Get(), SQL_CLOSE);
  SQLFreeStmt(statement_.Get(), SQL_UNBIND);
  SQLSetStmtAttr(statement_.Get(), SQL_ATTR_ROW_ARRAY_SIZE, AsPointer(1), 0);
  SQLSetStmtAttr(statement_.Get(), SQL_ATTR_ROWS_FETCHED_PTR, nullptr, 0);
  buffers_.clear();
  inPieces_ = true;
  Run();
  Fetch();
}

void Cursor::FetchPieces(sql::BlockStore& rows) {
  for (; fetched_ > 0; Fetch()) {
    for (std::size_t i = 1; i <= columns_.size(); ++i) AddPieces(rows, static_cast<SQLUSMALLINT>(i));
  }
}

void Cursor::AddNull(sql::BlockStore& rows, Column& column) {
  const bool typesColumn = rows.RowCount() == 0 && column.reading == Reading::SqliteComputed;
  if (typesColumn) column.reading = Reading::SqliteUntyped;
  rows.AddNull();
}

// The indicator tells how much there is still to come; what the drivers return beside it differs.
void Cursor::AddPieces(sql::BlockStore& rows, SQLUSMALLINT number) {
  Column& column = columns_[number - 1];
  std::size_t have = 0;
  std::size_t room = std::max(kPieceBytes, column.width);
  while (true) {
    if (scratch_.size() < have + room) scratch_.resize(have + room);
    SQLLEN length = 0;
    const bool more = CheckStatement(
        SQLGetData(statement_.Get(), number, column.cType, scratch_.data() + have, static_cast<SQLLEN>(room), &length),
        statement_.Get());
    if (more && length == SQL_NULL_DATA) return AddNull(rows, column);
    if (!more) break;
    const std::size_t held = Capacity(column, room);
    const auto size = static_cast<std::size_t>(length);
    if (length != SQL_NO_TOTAL && size <= held) {
      have += size;
      break;
    }
    have += held;
    room = length == SQL_NO_TOTAL ? room * 2 : size - held + 1;
  }
  AddValue(rows, column, {scratch_.data(), have});
}

}  // namespace kalvo::odbc
