#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "datasrc/answer.h"
#include "datasrc/field_map.h"
#include "kalvo/platform/platform.h"
#include "kalvo/row_source.h"

namespace kalvo {

class Connection;
class Context;
class RecordSet;
class Rows;
class Table;
class Trap;

// The row source of the reporting database. It completes the table's SQL with the page's scope and sort, runs it
// over the data source "KalvoDB" and keeps all rows; a second statement of the SQL is the totals row.
class KalvodbDataSrc : public RowSource {
 public:
  explicit KalvodbDataSrc(const Platform& platform);
  ~KalvodbDataSrc() override;

  // `ResourceName` takes the place of "%NAME%". The three are kept until the source is dropped.
  void Initialize(Table& KalvoTable, std::string_view ResourceName, Context& Ctxt);

  // 0, the low 16 bits of the error's number (1 where those are 0), or 1 for rows that do not fit their names.
  std::int16_t OpenDS() override;
  std::int32_t CloseDS() override;
  std::int16_t MoveFirst() override;
  std::int16_t MoveNext() override;

  // Runs the second statement. Its row is then the current one, under its own field names.
  std::int16_t MoveTotals() override;

  std::string_view GetField(std::string_view szFieldName) override;
  std::optional<std::string_view> GetIdentifier(std::string_view szFieldName) override;

  // The published form: text, or with `bGUID` the identifier's digits, null where it is null.
  Value GetField(std::string_view szFieldName, bool bGUID);

  std::int32_t RecordCount() override { return recordCount_; }
  std::int16_t GetRowIndex() override;

 private:
  std::string BuildSQL() const;
  void Reconnect(std::unique_ptr<Connection> connection);
  std::int16_t LoadRows(Trap& trap);
  std::int16_t LoadFieldNames(Trap& trap);
  std::optional<std::int32_t> FieldNumber(Trap& trap, std::string_view szFieldName) const;
  static void TraceField(Trap& trap, const Context& context, std::int32_t field, std::string_view name,
                         std::string_view value);
  bool RowIsLoaded() const;

  const Platform& platform_;
  std::shared_ptr<Table> table_;
  std::string resourceName_;
  std::shared_ptr<Context> context_;
  std::unique_ptr<Connection> connection_;
  std::shared_ptr<RecordSet> recordSet_;
  FieldMap fields_;
  std::shared_ptr<const Rows> rows_;  // of this record set, or of the one before an empty one
  Answer answer_;
  std::int32_t recordCount_ = 0;
  std::int32_t rowIndex_ = 0;
};

}  // namespace kalvo
