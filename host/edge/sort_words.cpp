#include "host/edge/sort_words.h"

#include <algorithm>

#include "kalvo/column.h"
#include "kalvo/column_database.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/text_tools.h"
#include "kalvo/platform/utf8.h"
#include "kalvo/table.h"
#include "kalvo/table_constants.h"
#include "kalvo/table_database.h"

namespace kalvo::edge {
namespace {

// Calls `take` with the word of each item of a list, until it says no or an item is not a word. False then.
template <typename Take>
bool ForEachWord(std::string_view list, Take&& take) {
  const TableConstants constants;
  for (std::size_t from = 0; from <= list.size();) {
    const std::size_t to = std::min(list.find(',', from), list.size());
    std::string_view item = Trimmed(list.substr(from, to - from), " ");
    from = to + 1;
    const std::size_t blank = item.find(' ');
    if (blank != std::string::npos) {
      const std::string_view direction = Trimmed(item.substr(blank), " ");
      if (direction != constants.gszAscendingSort() && direction != constants.gszDescendingSort()) return false;
      item = item.substr(0, blank);
    }
    if (item.empty() || !IsAscii(item) || !take(item)) return false;
  }
  return true;
}

}  // namespace

SortWords::SortWords(const Platform& platform) {
  const KalvoTableDatabase tables(platform);
  const KalvoColumnDatabase columns;
  for (std::int32_t id = 1; id < TABLE_TOTALTABLES; ++id) {
    const std::shared_ptr<Table> table = tables.GetTable(id);
    if (!table) continue;
    Add(table->GetOrderBy());
    for (const std::int16_t number : table->GetColumns()) {
      const auto column = std::dynamic_pointer_cast<KalvoColumn>(columns.GetColumn(number));
      if (column && column->Definition().sortColumn) Add(column->Definition().databaseField);
    }
  }
}

void SortWords::Add(std::string_view order) {
  ForEachWord(order, [this](std::string_view word) {
    words_.insert(ToLower(word));
    return true;
  });
}

bool SortWords::Take(std::string_view sort, std::span<const std::string> more) const {
  return ForEachWord(sort, [&](std::string_view word) {
    return words_.contains(ToLower(word)) ||
           std::any_of(more.begin(), more.end(), [&](const std::string& own) { return EqualsIgnoringCase(own, word); });
  });
}

}  // namespace kalvo::edge
