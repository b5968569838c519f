#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "kalvo/platform/platform.h"
#include "kalvo/table_row_source.h"

namespace kalvo {

class Connection;
class FieldMap;
class RecordSet;
class Rows;
class Steps;

// The row source of the reporting database. It completes the table's SQL with the page's scope and sort, runs it
// over the data source "KalvoDB" and reads its rows; a second statement of the SQL is the totals row. The resource
// name takes the place of "%NAME%".
class KalvodbDataSrc : public TableRowSource {
 public:
  explicit KalvodbDataSrc(const Platform& platform);
  ~KalvodbDataSrc() override;

  // 0, the low 16 bits of the error's number (1 where those are 0), or 1 for rows that do not fit their names.
  std::int16_t OpenDS() override;
  std::int32_t CloseDS() override;
  std::int16_t MoveFirst() override;
  std::int16_t MoveNext() override;

  // Runs the second statement. Its row is then the current one, under its own field names.
  std::int16_t MoveTotals() override;

  std::string_view GetField(std::string_view szFieldName) override;
  std::optional<std::string_view> GetIdentifier(std::string_view szFieldName) override;

  std::optional<std::int32_t> StoredField(std::string_view name) override;
  const StoredValue* StoredRow() override;

  // The published form: text, or with `bGUID` the identifier's digits, null where it is null.
  Value GetField(std::string_view szFieldName, bool bGUID);

 private:
  void Forget() override;
  std::string BuildSQL() const;
  bool Connect(Steps& steps);
  bool Execute(Steps& steps, std::string_view sql);
  std::int16_t LoadRows(Steps& steps);
  std::int16_t LoadFieldNames(Steps& steps);
  std::optional<std::int32_t> FieldNumber(Steps& steps, std::string_view szFieldName) const;
  bool LoadRow(Steps& steps);

  const Platform& platform_;
  std::unique_ptr<Connection> connection_;
  std::shared_ptr<RecordSet> recordSet_;
  std::unique_ptr<FieldMap> fields_;
  std::shared_ptr<const Rows> rows_;  // of this record set, or of the one before an empty one
  bool rowsAreLost_ = false;
};

}  // namespace kalvo
