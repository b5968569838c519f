#include "kalvo/table_row_source.h"

#include <limits>
#include <utility>

#include "kalvo/context.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/owned.h"
#include "kalvo/table.h"

namespace kalvo {

TableRowSource::TableRowSource() = default;
TableRowSource::~TableRowSource() = default;

void TableRowSource::Initialize(Table& KalvoTable, std::string_view ResourceName, Context& Ctxt) {
  table_ = Owned(KalvoTable);
  resourceName_ = ResourceName;
  context_ = Owned(Ctxt);
  Forget();
}

std::int16_t TableRowSource::GetRowIndex() { return ToInt16(static_cast<double>(rowIndex_)); }

std::string TableRowSource::TakeAnswer() {
  std::string text = std::exchange(answer_, {});
  text.clear();
  return text;
}

std::int32_t TableRowSource::NextRow() const {
  if (rowIndex_ == std::numeric_limits<std::int32_t>::max()) throw Overflow();
  return rowIndex_ + 1;
}

}  // namespace kalvo
