#include "kalvo/table_constants.h"

#include "generator/table_sql.h"

namespace kalvo {

std::string_view TableConstants::TableSQL(KalvoTableConstants tableId) const { return FixedQuery(tableId); }

}  // namespace kalvo
