#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kalvo/platform/database.h"

namespace kalvo::sql {

// The statements of a batch, in order, after a look at their shape: the completed text has the tokens of the
// table's own text, with exactly one string literal for each scope placeholder, and for "%SORT%" a list of names,
// each with ASC or DESC or neither, or the table's own order-by text with at most one of them behind it. A name of a
// sort list is of ASCII unless it is quoted. Any other text is refused with 0x80040E14 and a description that says what
// is wrong. An empty sort text passes, and is the database's to complain about. The views are into the batch's
// completed text.
std::vector<std::string_view> CheckedStatements(const Batch& batch);

// The names that stand behind a point in the sort text of a batch and nowhere in its table's own text, as the
// database reads them: a plain name in lower case, a quoted one as it is. A database that takes "t.f" for a call of
// the function f is asked whether they are columns before it runs the batch. The batch has been checked.
std::vector<std::string> ForeignSortNames(const Batch& batch);

// The plain names of a table's own text in lower case and its quoted ones as they are: its tables are among them.
std::vector<std::string> NamesOf(std::string_view pattern);

}  // namespace kalvo::sql
