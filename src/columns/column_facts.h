#pragma once

#include <string>

#include "kalvo/column.h"

namespace kalvo {

// A definition beside its spans as attribute texts, "" for none.
struct ColumnFacts : ColumnDefinition {
  explicit ColumnFacts(ColumnDefinition definition);

  std::string rowSpan, columnSpan;
};

}  // namespace kalvo
