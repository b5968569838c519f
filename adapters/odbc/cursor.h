#pragma once

#include <memory>
#include <string>
#include <vector>

#include "adapters/odbc/columns.h"
#include "adapters/odbc/session.h"
#include "adapters/sql/block_store.h"

namespace kalvo::odbc {

// How many columns a statement has; it is not run.
std::int32_t CountColumns(Session& session, const std::string& sql);

// One statement that has run, and the way to its rows: in blocks into bound buffers, or, where a column may hold
// values of any length, row by row and piece by piece. The two are never mixed; some drivers get that wrong.
class Cursor {
 public:
  // Runs the statement and fetches its first rows.
  Cursor(std::shared_ptr<Session> session, const std::string& sql);
  ~Cursor();

  const std::vector<Column>& Columns() const { return columns_; }
  bool IsEmpty() const { return fetched_ == 0; }

  // All rows, from the first. Called once.
  std::unique_ptr<sql::BlockStore> FetchAll();

 private:
  // Room for one column's values of a whole block.
  struct Buffer {
    std::vector<char> values;
    std::vector<SQLLEN> lengths;
  };

  enum class Outcome { Complete, ValueTooLong };

  void Run();
  bool AnyLong() const;
  void Bind();
  void Fetch();
  Outcome FetchBlocks(sql::BlockStore& rows);
  Outcome AddBlock(sql::BlockStore& rows) const;
  void FetchPieces(sql::BlockStore& rows);
  void AddPieces(sql::BlockStore& rows, SQLUSMALLINT number);
  static void AddNull(sql::BlockStore& rows, Column& column);
  void StartAnewInPieces();

  std::shared_ptr<Session> session_;
  const std::string sql_;
  StatementHandle statement_;
  std::vector<Column> columns_;
  std::vector<Buffer> buffers_;
  bool inPieces_ = false;
  SQLULEN fetched_ = 0;  // rows of the block that was fetched last; 0 past the end
  std::string scratch_;
};

}  // namespace kalvo::odbc
