#include "columns/bound_column.h"

#include "kalvo/table_column.h"

namespace kalvo {

std::unique_ptr<BoundColumn> TableColumn::Bind(Context& /*context*/, Display& /*display*/, RowSource& /*rows*/) {
  return nullptr;
}

}  // namespace kalvo
