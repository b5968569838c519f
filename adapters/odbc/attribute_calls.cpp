#include "adapters/odbc/attribute_calls.h"

#include "adapters/odbc/cursor.h"
#include "adapters/odbc/session.h"
#include "adapters/sql/diagnostics.h"
#include "adapters/sql/shape.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/text_tools.h"

namespace kalvo::odbc {

namespace {

std::string ColumnQuestion(std::string_view name, const std::vector<std::string>& tables) {
  return Built([&](std::string& out) {
    out +=
        "select 1 as Found from pg_catalog.pg_attribute a, pg_catalog.pg_class c "
        "where a.attrelid = c.oid and not a.attisdropped and a.attname = ";
    AppendSqlQuoted(out, name);
    out += " and c.relname in (";
    for (std::size_t i = 0; i < tables.size(); ++i) {
      if (i > 0) out += ", ";
      AppendSqlQuoted(out, tables[i]);
    }
    out += ") limit 1";
  });
}

}  // namespace

void RefuseCalls(const std::shared_ptr<Session>& session, const Batch& batch) {
  for (const std::string& name : sql::ForeignSortNames(batch)) {
    if (!Cursor(session, ColumnQuestion(name, sql::NamesOf(batch.pattern))).IsEmpty()) continue;
    throw sql::DatabaseError("42000", Built([&](std::string& out) {
                               Append(out, "The sort text names what is no column: \"", name, "\"");
                             }));
  }
}

}  // namespace kalvo::odbc
