#pragma once

#include <filesystem>
#include <memory>

#include "database/sample/row_writer.h"

namespace kalvo::sample {

// Makes a SQLite file of the schema and fills it: one transaction, prepared statements, the indexes last. The
// file gets its name when it is whole; until then it stands beside it, and a failure takes it away.
class SqliteWriter : public RowWriter {
 public:
  explicit SqliteWriter(std::filesystem::path file);
  ~SqliteWriter() override;

  using RowWriter::Table;
  void Table(std::string_view name, std::span<const std::string_view> columns) override;
  void Row(std::span<const Cell> cells) override;

  // Ends the rows, makes the indexes and puts the file in its place.
  void Finish();

 private:
  class File;
  std::filesystem::path name_, temporary_;
  std::unique_ptr<File> file_;
};

}  // namespace kalvo::sample
