#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/odbc/handle.h"
#include "adapters/odbc/session.h"
#include "adapters/sql/block_store.h"

namespace kalvo::odbc {

// How the values of a column are read. The drivers' own conversions lose too much: SQLite's calls a column by the
// type of its first row, the others give decimals with all their zeros.
enum class Reading {
  Text,
  Integer,  // of 64 bits, whatever the column says
  Double,
  Boolean,
  Timestamp,
  Bytes,
  Decimal,         // text that is a number
  SqliteDate,      // text that is a date when it has the ISO form
  SqliteComputed,  // text that is a date when it has the form that computing with dates gives
  SqliteUntyped,   // the like where the first row is null: text may be a fraction too
};

struct Column {
  std::string name;
  Reading reading;
  SQLSMALLINT cType;
  std::size_t width;  // of a value in a bound buffer; 0 for a column whose values may be of any length
};

// The columns of a statement that has run.
std::vector<Column> DescribeColumns(SQLHSTMT statement, Engine engine);

// Puts a value as it was read into the next cell.
void AddValue(sql::BlockStore& rows, const Column& column, std::string_view value);

}  // namespace kalvo::odbc
