#pragma once

#include <string_view>

#include "kalvo/enumerations.h"
#include "kalvo/platform/value.h"

namespace kalvo {

// The constants that page scripts and row sources share. It has no state: every object answers alike.
class TableConstants : public Object {
 public:
  // The data source of the reporting database.
  std::string_view TABLES_DSN() const { return "KalvoDB"; }

  std::string_view gszAscendingSort() const { return "ASC"; }
  std::string_view gszDescendingSort() const { return "DESC"; }

  // The fixed query of a task table, without a sort clause; "" for a table that has none.
  std::string_view TableSQL(KalvoTableConstants tableId) const;
};

}  // namespace kalvo
