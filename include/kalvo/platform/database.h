#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "kalvo/platform/locale.h"

namespace kalvo {

// One value of a result in its own type. `StoredValue{}` is null. What it points to stays as long as its row.
struct StoredValue {
  enum class Kind : std::uint8_t { Null, Boolean, Integer, Double, Date, Text, Binary };

  union {
    std::int64_t integer;  // and the boolean
    double number;         // and the date's serial
    const char* bytes;     // of text and binary
  };
  std::uint32_t size;  // of text and binary
  Kind kind;
};

// The text of a value: null "", booleans "True"/"False", dates in the general date format; a serial that is not a date
// fails with 13. The view is into the value or into `scratch`.
std::string_view TextOf(const StoredValue& value, const Locale& locale, std::string& scratch);

// A whole result, kept by its record set. Fields and rows count from 0.
class Rows {
 public:
  virtual ~Rows() = default;

  virtual std::int32_t RowCount() const = 0;
  virtual std::int32_t FieldCount() const = 0;

  // Fetches a row where rows are fetched when they are asked for; every other call does it too. Fails as the statement
  // does.
  virtual void Fetch(std::int32_t /*row*/) const {}

  // The text of a value: null "", booleans "True"/"False", dates in the general date format. The view is into
  // the store itself or into `scratch`, whose content is lost; it is valid until `scratch` changes or another row is
  // asked for.
  virtual std::string_view Text(std::int32_t field, std::int32_t row, std::string& scratch) const = 0;

  // The bytes of a binary value; nothing for null. Fails with 13 for a value of another type.
  virtual std::optional<std::span<const std::uint8_t>> Binary(std::int32_t field, std::int32_t row) const = 0;

  // Whether the rows are kept as typed values. `Values` then answers those of a row, one for each field, valid until
  // the rows are asked for another one.
  virtual bool HasValues() const { return false; }
  virtual const StoredValue* Values(std::int32_t /*row*/) const { return nullptr; }
};

// The result of one statement of a batch.
class RecordSet {
 public:
  virtual ~RecordSet() = default;

  // True when the statement gave no row at all.
  virtual bool IsEmpty() = 0;

  virtual std::int32_t FieldCount() = 0;

  // The name of field i (from 0), as the database spells it.
  virtual std::string FieldName(std::int32_t i) = 0;

  // All rows. Owned by the record set, valid until it is closed or destroyed.
  virtual const Rows& GetRows() = 0;

  // Runs the batch's next statement. Fails with 91 when there is none, and with the statement's own error;
  // this record set is unharmed then.
  virtual std::unique_ptr<RecordSet> NextRecordset() = 0;

  virtual void Close() = 0;
};

// SQL to run, beside the text it was made from.
struct Batch {
  std::string_view sql;      // complete: one statement or several, without semicolons between them
  std::string_view pattern;  // the table's own text, with its placeholders ("%SORT%", "%NAME%", ...)
  std::string_view orderBy;  // the table's own order-by text, which a sort text may always be

  // A report of which pages are read: its rows may be fetched when they are asked for, and rows that its order leaves
  // equal are put in one order, so that each row is on one page. All of it is then one moment of the database.
  bool readInPages = false;

  // The row of such a report that is asked for first, from 1, as far as it is known; -1 for one of the last.
  std::int32_t firstRow = 1;
};

// One open connection to the reporting database; closed when it is destroyed. Record sets do not outlive it.
class Connection {
 public:
  virtual ~Connection() = default;

  // Runs the first statement of the batch. A completed text whose statements do not have the shape that the
  // pattern gives them is refused.
  virtual std::unique_ptr<RecordSet> Execute(const Batch& batch) = 0;

  virtual void Close() = 0;
};

// The reporting database, read-only. Its errors have the numbers 0x80004005, 0x80040E14 and 0x80040E37 and a
// description "[SQLSTATE] the driver's text".
class Database {
 public:
  virtual ~Database() = default;

  // Opens a data source by name.
  virtual std::unique_ptr<Connection> Connect(std::string_view dataSource) = 0;
};

}  // namespace kalvo
