#pragma once

#include <string>
#include <string_view>

#include "kalvo/enumerations.h"

namespace kalvo {

// The fixed query of a task table, without a sort clause; "" for a table that has none.
std::string_view FixedQuery(KalvoTableConstants table);

// A table's whole SQL: two statements, the data rows first and the totals row second, with placeholders; "" for a
// table that does not read the reporting database.
std::string TableSql(KalvoTableConstants table);

}  // namespace kalvo
