#pragma once

#include <string_view>
#include <vector>

#include "platform/database.h"

namespace kalvo::sql {

// The statements of a batch, in order, after a look at their shape: the completed text has the tokens of the
// table's own text, with exactly one string literal for each scope placeholder, and for "%SORT%" a list of names,
// each with ASC or DESC or neither, or the table's own order-by text with at most one of them behind it. Any other
// text is refused with 0x80040E14 and a description that says what is wrong. An empty sort text passes, and is the
// database's to complain about. The views are into the batch's completed text.
std::vector<std::string_view> CheckedStatements(const Batch& batch);

}  // namespace kalvo::sql
