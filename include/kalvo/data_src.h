#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "kalvo/enumerations.h"
#include "kalvo/platform/value.h"

namespace kalvo {

class Context;
class Table;

// States the operations of a row source and fetches nothing: it opens, moves and closes with status 0 and has no
// rows. The real row sources do not derive from it, and it has no totals.
class DataSrc : public Object {
 public:
  // Keeps the table and the context; the type and the resource are ignored.
  void Initialize(std::int16_t TableType, Table& pTable, std::string_view ResourceName, Context& Ctxt);
  std::int16_t OpenDS() { return 0; }
  std::int16_t CloseDS() { return 0; }
  std::int16_t MoveFirst() { return 0; }
  std::int16_t MoveNext() { return 0; }
  std::string GetField(std::string_view) { return {}; }
  std::int32_t RecordCount() const { return 0; }
  std::int16_t GetRowIndex() const { return 0; }

 private:
  std::shared_ptr<Table> table_;
  std::shared_ptr<Context> context_;
};

}  // namespace kalvo
