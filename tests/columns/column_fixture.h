#pragma once

#include <string>
#include <utility>
#include <vector>

#include "fakes/page_fixture.h"
#include "fakes/row_source.h"
#include "kalvo/column.h"

namespace kalvo::test {

// A column over one row of a page.
struct ColumnFixture : PageFixture {
  explicit ColumnFixture(std::string_view query = "", std::string_view form = "") : PageFixture(query, form) {
    column.align = "";
    column.databaseField = "Value";
    context->IncrementTableIndex();
  }

  ColumnDefinition column;
  FakeRowSource row;

  std::string Header() { return KalvoColumn(column).ConstructHTMLHeader(*context, *display); }
  std::string Data() { return KalvoColumn(column).ConstructHTMLData(*context, *display, row); }
  std::string Total(bool& firstCell) {
    return KalvoColumn(column).ConstructHTMLTotal(*context, *display, row, firstCell);
  }
  std::string Total() {
    bool firstCell = false;
    return Total(firstCell);
  }

  // What the cell holds, without its tag.
  std::string Content() {
    const std::string cell = Data();
    const auto start = cell.find('>') + 1;
    return cell.substr(start, cell.rfind("</td>") - start);
  }

  // Where the cell leads, "" for nowhere; decoded as a browser decodes the attribute.
  std::string Link() {
    std::string content = Content();
    constexpr std::string_view kStart = "<a href=\"";
    if (content.rfind(kStart, 0) != 0) return {};
    content = content.substr(kStart.size(), content.find('"', kStart.size()) - kStart.size());
    for (auto at = content.find("&amp;"); at != std::string::npos; at = content.find("&amp;"))
      content.replace(at, 5, "&");
    return content;
  }

  // The fields that have been read, in their order.
  std::string Read() {
    std::string names;
    for (const std::string& step : std::exchange(row.steps.done, {})) {
      names += (names.empty() ? "" : " ") + step.substr(9, step.size() - 10);
    }
    return names;
  }
};

}  // namespace kalvo::test
