#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "fakes/columns.h"
#include "fakes/page_fixture.h"
#include "kalvo/column_database.h"
#include "kalvo/table.h"
#include "support/error_of.h"

namespace kalvo::test {

using std::string_literals::operator""s;

inline constexpr std::int16_t kId = 1, kName = 2;

// A table of two columns over as many rows as wanted, numbered from 1, with a totals row.
struct RenderingFixture : PageFixture {
  explicit RenderingFixture(std::string_view query = "", int records = 2) : PageFixture(query) {
    columns.Add(kId, "Id");
    columns.Add(kName, "Name");
    Records(records);
    Define();
  }

  void Records(int records) {
    database.results = {{{"Id", "Name"}, {}}, {{"Id"}, {{std::int32_t{7}}}}};
    for (std::int32_t i = 1; i <= records; ++i) database.results[0].rows.push_back({i, "N"s});
  }
  void Define() {
    table->Initialize(type, TABLE_CURRENTALERTS, "Test", totals ? table_ShowTotals : table_NoTotals, charts, lastScan,
                      form, entries, ids, "select %SORT%", "Id", "ASC");
  }
  std::string Render(std::string_view emptyMessage = "Nothing.", std::string_view name = "") {
    table->BuildHTML(*context, *page->response, *display, columns, emptyMessage, name);
    return Taken();
  }

  KalvoTableType type = TABLETYPE_KALVODB;
  bool totals = false, charts = false, lastScan = false, form = false, entries = false;
  std::vector<std::int16_t> ids = {kId};
  FakeColumns columns;
  std::shared_ptr<Table> table = std::make_shared<Table>(platform);
};

inline constexpr char kAnchor[] = "\r\n<a name=\"1chart\"></a>\r\n";
inline constexpr char kStart[] = "\r\n<table border=\"1\" cellpadding=\"2\" cellspacing=\"0\">\r\n";
inline constexpr char kEnd[] = "\r\n</table>\r\n";

inline std::string Row(const std::string& cells) { return "<tr>\r\n" + cells + "</tr>\r\n"; }

inline std::string Rows(int first, int last) {
  std::string rows = Row("[Id]");
  for (int i = first; i <= last; ++i) rows += Row("[Id=" + std::to_string(i) + "]");
  return rows;
}

// The part of a text between two others.
inline std::string Between(const std::string& text, const std::string& from, const std::string& to) {
  const auto start = text.find(from);
  if (start == std::string::npos) return "(none)";
  const auto end = text.find(to, start + from.size());
  return text.substr(start + from.size(), end - start - from.size());
}

// The paging links of a text as "Next=51/20", image, first row and page size, in their order.
inline std::string PagingLinks(const std::string& html) {
  std::string links;
  for (auto at = html.find("<a href"); at != std::string::npos; at = html.find("<a href", at + 1)) {
    const std::string link = html.substr(at, html.find("</a>", at) - at);
    links += (links.empty() ? "" : " ") + Between(link, "Controls/", ".gif") + "=" + Between(link, "First=", "&amp;") +
             "/" + Between(link, "PageSize=", "#");
  }
  return links;
}

}  // namespace kalvo::test
