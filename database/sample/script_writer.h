#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "database/sample/row_writer.h"
#include "database/schema.h"

namespace kalvo::sample {

// Writes the sample as an SQL script that an engine's own client loads: the tables, the rows in statements of
// some hundred each, the indexes.
class ScriptWriter : public RowWriter {
 public:
  ScriptWriter(std::ostream& out, schema::Engine engine);

  using RowWriter::Table;
  void Table(std::string_view name, std::span<const std::string_view> columns) override;
  void Row(std::span<const Cell> cells) override;

  // Ends the rows and makes the indexes.
  void Finish();

 private:
  void EndStatement();

  std::ostream& out_;
  schema::Engine engine_;
  std::string insert_;  // "insert into T (A, B) values\n"
  std::string row_;
  int rowsInStatement_ = 0;
};

}  // namespace kalvo::sample
