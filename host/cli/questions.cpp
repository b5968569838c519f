#include "host/cli/questions.h"

#include "kalvo/platform/database.h"
#include "kalvo/table_constants.h"

namespace kalvo::host {

std::vector<std::vector<std::string>> Questions::Ask(std::string_view sql) {
  const auto connection = database_.Connect(TableConstants().TABLES_DSN());
  const auto records = connection->Execute({sql, sql, ""});
  std::vector<std::vector<std::string>> answer;
  if (records->IsEmpty()) return answer;
  const Rows& rows = records->GetRows();
  std::string scratch;
  for (std::int32_t row = 0; row < rows.RowCount(); ++row) {
    std::vector<std::string>& texts = answer.emplace_back();
    for (std::int32_t field = 0; field < rows.FieldCount(); ++field) texts.emplace_back(rows.Text(field, row, scratch));
  }
  return answer;
}

std::vector<std::string> Questions::FieldNames(std::string_view sql) {
  const auto connection = database_.Connect(TableConstants().TABLES_DSN());
  const auto records = connection->Execute({sql, sql, ""});
  std::vector<std::string> names;
  for (std::int32_t i = 0; i < records->FieldCount(); ++i) names.push_back(records->FieldName(i));
  return names;
}

}  // namespace kalvo::host
