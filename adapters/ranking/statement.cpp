#include "adapters/ranking/statement.h"

#include <algorithm>

#include "kalvo/codes.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/text_tools.h"

namespace kalvo::ranking {
namespace {

struct ScopeRow {
  std::string_view placeholder, tables, condition;
};

// In the order of `Scope`.
// clang-format off
constexpr ScopeRow kScopes[] = {
  {"%NAME%", "EXDB_SERVER s, EXDB_TOPN t",                    "s.ComputerName = %NAME% and t.ServerId = s.ServerId"},
  {"%NAME%", "EXDB_GROUP g, EXDB_SERVER s, EXDB_TOPN t",      "g.Name = %NAME% and s.ServerGroupId = g.GroupId and t.ServerId = s.ServerId"},
  {"%SITE%", "EXDB_SERVER s, EXDB_TOPN t",                    "s.DistSiteName = %SITE% and t.ServerId = s.ServerId"},
  {"%ORG%",  "EXDB_SERVER s, EXDB_TOPN t",                    "s.DistOrgName = %ORG% and t.ServerId = s.ServerId"},
  {"%NAME%", "EXDB_GROUP g, EXDB_TOPNGROUP t, EXDB_SERVER s", "g.Name = %NAME% and t.RecipientGroupId = g.GroupId and s.ServerId = t.ServerId"},
};
// clang-format on

const ScopeRow& RowOf(Scope scope) { return kScopes[static_cast<std::size_t>(scope)]; }

// Databases do not agree on where null stands, so an unknown date is put behind the others by name.
std::string_view OrderOf(const Kind& kind) {
  return kind.rankedBy == RankedBy::Date
             ? "case when t.Modified is null then 1 else 0 end, t.Modified, t.ServerId, t.Place"
             : "t.Amount desc, t.ServerId, t.Place";
}

void AppendFields(std::string& out, const Kind& kind) {
  Append(out, "select r.Amount");
  for (const FieldSource& source : FieldsOf(kind.subject)) Append(out, ", ", source.expression);
}

void AppendRanking(std::string& out, const Kind& kind, const ScopeRow& scope, const Settings& settings) {
  Append(out, "(select t.ItemId, t.Amount, s.ComputerName, row_number() over (order by ", OrderOf(kind),
         ") as Standing");
  Append(out, " from ", scope.tables, " where ", scope.condition, " and s.ServerState = ", kServerManaged);
  Append(out, " and t.Kind = ", kind.number, " and t.OldDays = ", kind.age == Age::Old ? settings.oldDays : 0);
  Append(out, " and t.Place <= ", settings.rows, ") r");
}

}  // namespace

Statement MakeStatement(const Kind& kind, Scope scope, std::string_view name, const Settings& settings) {
  const ScopeRow& row = RowOf(scope);
  Statement statement;
  AppendFields(statement.pattern, kind);
  Append(statement.pattern, " from ");
  AppendRanking(statement.pattern, kind, row, settings);
  Append(statement.pattern, " ", TablesOf(kind.subject), " where r.Standing <= ", settings.rows,
         " order by r.Standing");
  statement.sql = statement.pattern;
  ReplaceAll(statement.sql, row.placeholder, SqlQuoted(name));
  return statement;
}

}  // namespace kalvo::ranking
