#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "kalvo/platform/value.h"

namespace kalvo {

struct StoredValue;

// A row source hands a table its rows, one current row at a time. The table makes one for each rendering and
// drops it when the rendering ends; one thread. A status is 0 for success; the source has reported a failure's
// text before it answers another.
//
// A page script may call what it likes, when it likes, also while another call of the same source is under way:
//
// - Before it is initialised a source fails with 91 wherever it would have to report something or ask the page;
//   elsewhere it answers as a source without rows.
// - Before it is opened it has no rows: a move that needs them is reported with 91 and leaves none.
// - Behind the last row every field reads "". The source over the database counts on, the others stand still.
// - On the totals row `MoveFirst` leads back to the rows, but for the source over the database, whose rows are the
//   totals from then on, and the live one, whose fields are totals until it is opened again.
// - Closing empties the source over the database; the others go on answering.
// - Opened again it has the rows of the new opening. The row number stays until `MoveFirst`.
class RowSource : public Object {
 public:
  // Opens the rows. 0, or the status of a failure that has already been reported.
  virtual std::int16_t OpenDS() = 0;

  // Releases what can be released early. 0, or the full number of the error.
  virtual std::int32_t CloseDS() = 0;

  virtual std::int16_t MoveFirst() = 0;

  // Makes the next row current. Allowed past the last row, where every field reads "". Fails, or stays, where the
  // row number would leave 32 bits.
  virtual std::int16_t MoveNext() = 0;

  // Makes the totals row current. 0 when there is one.
  virtual std::int16_t MoveTotals() = 0;

  // A field of the current row as text, valid until the source is asked for anything again. An unknown name reads
  // ""; the source over the database reports it.
  virtual std::string_view GetField(std::string_view szFieldName) = 0;

  // A field that identifies its row: bytes as hexadecimal digits in storage order. Nothing where it is null.
  virtual std::optional<std::string_view> GetIdentifier(std::string_view szFieldName) { return GetField(szFieldName); }

  // For whoever reads very many rows: where a field lies among the stored values of each row, until the source is
  // opened or moved to its totals. Nothing for a name that the rows have not, and where each reading has to be traced,
  // reported or asked of somebody else; then `GetField` is the way.
  virtual std::optional<std::int32_t> StoredField(std::string_view /*name*/) { return std::nullopt; }

  // The stored values of the current row, null behind the last. Asked for only where a field has been found.
  virtual const StoredValue* StoredRow() { return nullptr; }

  virtual std::int32_t RecordCount() = 0;

  // The number of the current row, from 1; 0 before `MoveFirst`. Fails with 6 above 32767.
  virtual std::int16_t GetRowIndex() = 0;
};

}  // namespace kalvo
