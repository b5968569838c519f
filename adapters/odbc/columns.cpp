#include "adapters/odbc/columns.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <optional>

#include "adapters/odbc/odbc_diagnostics.h"
#include "adapters/sql/iso_date.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::odbc {

namespace {

constexpr std::size_t kLongestBound = 4000;  // characters or bytes; longer columns are read piece by piece
constexpr std::size_t kBytesInCharacter = 4;

struct TypeRow {
  SQLSMALLINT type;
  Reading reading;
};

// The types that are not read as text.
// clang-format off
constexpr TypeRow kTypes[] = {
  {SQL_BIT,            Reading::Boolean},
  {SQL_TINYINT,        Reading::Integer},
  {SQL_SMALLINT,       Reading::Integer},
  {SQL_INTEGER,        Reading::Integer},
  {SQL_BIGINT,         Reading::Integer},
  {SQL_REAL,           Reading::Double},
  {SQL_FLOAT,          Reading::Double},
  {SQL_DOUBLE,         Reading::Double},
  {SQL_NUMERIC,        Reading::Decimal},
  {SQL_DECIMAL,        Reading::Decimal},
  {SQL_TYPE_DATE,      Reading::Timestamp},
  {SQL_TYPE_TIMESTAMP, Reading::Timestamp},
  {SQL_BINARY,         Reading::Bytes},
  {SQL_VARBINARY,      Reading::Bytes},
  {SQL_LONGVARBINARY,  Reading::Bytes},
};
// clang-format on

Reading ReadingOf(SQLSMALLINT type) {
  for (const auto& row : kTypes) {
    if (row.type == type) return row.reading;
  }
  return Reading::Text;
}

// SQLite's driver holds every value but a blob as text, and a value need not be of its column's type.
Reading SqliteReading(Reading reading, bool computed) {
  switch (reading) {
    case Reading::Bytes: return Reading::Bytes;
    case Reading::Timestamp: return Reading::SqliteDate;
    case Reading::Text: return computed ? Reading::SqliteComputed : Reading::Text;
    default: return Reading::Decimal;
  }
}

std::string TextAttribute(SQLHSTMT statement, SQLUSMALLINT number, SQLUSMALLINT attribute) {
  char text[512] = "";
  SQLSMALLINT length = 0;
  SQLLEN ignored = 0;
  SQLColAttribute(statement, number, attribute, text, sizeof text, &length, &ignored);
  return text;
}

SQLSMALLINT CTypeOf(Reading reading) {
  switch (reading) {
    case Reading::Integer: return SQL_C_SBIGINT;
    case Reading::Boolean: return SQL_C_BIT;
    case Reading::Double: return SQL_C_DOUBLE;
    case Reading::Timestamp: return SQL_C_TYPE_TIMESTAMP;
    case Reading::Bytes: return SQL_C_BINARY;
    default: return SQL_C_CHAR;
  }
}

std::size_t WidthOf(Reading reading, SQLULEN size) {
  constexpr std::size_t kDecimalWidth = 128;
  switch (reading) {
    case Reading::Integer: return sizeof(SQLBIGINT);
    case Reading::Boolean: return 1;
    case Reading::Double: return sizeof(double);
    case Reading::Timestamp: return sizeof(SQL_TIMESTAMP_STRUCT);
    case Reading::Decimal: return kDecimalWidth;
    case Reading::Bytes: return size <= kLongestBound ? size : 0;
    default: return size > 0 && size <= kLongestBound ? size * kBytesInCharacter + 1 : 0;
  }
}

Column Describe(SQLHSTMT statement, SQLUSMALLINT number, Engine engine) {
  std::string name(512, '\0');
  SQLSMALLINT length = 0, type = 0, scale = 0, nullable = 0;
  SQLULEN size = 0;
  CheckStatement(SQLDescribeCol(statement, number, Bytes(name), static_cast<SQLSMALLINT>(name.size()), &length, &type,
                                &size, &scale, &nullable),
                 statement);
  name.resize(std::strlen(name.c_str()));
  Reading reading = ReadingOf(type);
  if (engine == Engine::Sqlite) {
    reading = SqliteReading(reading, TextAttribute(statement, number, SQL_DESC_BASE_TABLE_NAME).empty());
  }
  // MariaDB's bit(1) is a number there, not a truth.
  if (engine == Engine::MariaDb && reading == Reading::Boolean) reading = Reading::Integer;
  return {name, reading, CTypeOf(reading), engine == Engine::Sqlite ? 0 : WidthOf(reading, size)};
}

template <typename T>
T As(std::string_view value) {
  T read{};
  std::memcpy(&read, value.data(), std::min(sizeof read, value.size()));
  return read;
}

// 15 is an integer, and so is 15.0000; a text that is not a number stays a text.
void AddDecimal(sql::BlockStore& rows, std::string_view text) {
  const char* end = text.data() + text.size();
  std::int64_t integer = 0;
  const auto whole = std::from_chars(text.data(), end, integer);
  if (whole.ec == std::errc() && whole.ptr == end) return rows.AddInteger(integer);
  double number = 0;
  const auto read = std::from_chars(text.data(), end, number);
  if (read.ec == std::errc() && read.ptr == end) return rows.AddDouble(number);
  rows.AddText(text);
}

void AddTimestamp(sql::BlockStore& rows, const SQL_TIMESTAMP_STRUCT& stamp) {
  const auto date = MakeDate(stamp.year, stamp.month, stamp.day, stamp.hour, stamp.minute, stamp.second);
  date ? rows.AddDate(*date) : rows.AddNull();
}

void AddDateOrText(sql::BlockStore& rows, std::optional<Date> date, std::string_view text) {
  date ? rows.AddDate(*date) : rows.AddText(text);
}

void AddUntyped(sql::BlockStore& rows, std::string_view text) {
  const auto date = sql::ParseIsoDateTime(text);
  if (!date && text.find('.') != std::string::npos) return AddDecimal(rows, text);
  AddDateOrText(rows, date, text);
}

}  // namespace

std::vector<Column> DescribeColumns(SQLHSTMT statement, Engine engine) {
  SQLSMALLINT count = 0;
  CheckStatement(SQLNumResultCols(statement, &count), statement);
  std::vector<Column> columns;
  for (SQLSMALLINT i = 1; i <= count; ++i) columns.push_back(Describe(statement, i, engine));
  return columns;
}

void AddValue(sql::BlockStore& rows, const Column& column, std::string_view value) {
  switch (column.reading) {
    case Reading::Text: return rows.AddText(value);
    case Reading::Integer: return rows.AddInteger(As<std::int64_t>(value));
    case Reading::Double: return rows.AddDouble(As<double>(value));
    case Reading::Boolean: return rows.AddBoolean(As<std::uint8_t>(value) != 0);
    case Reading::Timestamp: return AddTimestamp(rows, As<SQL_TIMESTAMP_STRUCT>(value));
    case Reading::Bytes: return rows.AddBytes({reinterpret_cast<const std::uint8_t*>(value.data()), value.size()});
    case Reading::Decimal: return AddDecimal(rows, value);
    case Reading::SqliteDate: return AddDateOrText(rows, sql::ParseIsoDate(value), value);
    case Reading::SqliteComputed: return AddDateOrText(rows, sql::ParseIsoDateTime(value), value);
    case Reading::SqliteUntyped: return AddUntyped(rows, value);
  }
}

}  // namespace kalvo::odbc
