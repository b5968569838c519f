#pragma once

#include "kalvo/platform/database.h"

namespace kalvo {

class PageText;

// A column bound to the stored rows of one rendering: it knows its definition, where its fields lie, and the text
// that each of its cells repeats. Made by `TableColumn::Bind`, dropped when the rendering ends. Nobody sees how it
// comes by its cells.
class BoundColumn {
 public:
  virtual ~BoundColumn() = default;

  // Appends the data cell of a row, whose stored values are given; null stands for a row behind the last. False, and
  // nothing appended, where the column itself has to be asked for this cell. A cell that fails may leave a part behind;
  // the caller drops it.
  virtual bool AppendCell(PageText& out, const StoredValue* row) = 0;
};

// A column that does not appear: its cells are nothing.
class HiddenColumn final : public BoundColumn {
 public:
  bool AppendCell(PageText&, const StoredValue*) override { return true; }
};

}  // namespace kalvo
