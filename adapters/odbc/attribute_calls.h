#pragma once

#include <memory>

#include "kalvo/platform/database.h"

namespace kalvo::odbc {

class Session;

// PostgreSQL reads "t.f" as a call of the function f with a row of t where t has no column f. Refuses a batch whose
// sort text asks for one: every name behind a point in it stands in the table's own text or is a column of a table
// that is named there. Fails with 0x80040E14. The batch's shape has been checked.
void RefuseCalls(const std::shared_ptr<Session>& session, const Batch& batch);

}  // namespace kalvo::odbc
