// Where a data cell leads, by its link type.

#include "columns/link_rules.h"
#include "columns/row_cell.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/page_host.h"
#include "kalvo/row_source.h"
#include "kalvo/table_constants.h"

namespace kalvo {

namespace {

constexpr double kStateManaged = 2;
constexpr double kNewServerAlert = 5018;
constexpr std::string_view kMissingServerColor = "#CCCCCC";

bool Applies(links::LinkWhen when, RowCell& cell) {
  if (when == links::LinkWhen::Always) return true;
  if (cell.value.empty()) return false;
  if (when == links::LinkWhen::ServerIsManaged) {
    const std::string_view state = cell.row.GetField("ServerState");
    return state.empty() || ParseNumber(state) == kStateManaged;
  }
  return ParseNumber(cell.row.GetField("AlertTypeCode")) != kNewServerAlert;
}

void AppendParameter(RowCell& cell, const links::LinkParameter& parameter) {
  const auto add = [&](std::string_view value) { cell.display.AppendParamToURL(cell.url, parameter.name, value); };
  const links::LinkSource& source = parameter.source;
  switch (source.from) {
    case links::From::None: break;
    case links::From::Value: add(cell.value); break;
    case links::From::Field: add(cell.row.GetField(source.field)); break;
    case links::From::AlertField: add(cell.row.GetField(cell.alertedResource ? source.field : source.topN)); break;
    case links::From::Name: add(cell.context.GetName()); break;
    case links::From::Mailbox: add(cell.context.GetMailbox()); break;
    case links::From::MailboxPath:
      add(Built([&](std::string& path) { Append(path, cell.context.GetMailbox(), '\\', cell.value); }));
      break;
    case links::From::Request: add(cell.context.GetRequest()->Item(parameter.name)); break;
  }
}

}  // namespace

void LinkCell(RowCell& cell) {
  if (cell.link <= HYPERLINK_NONE || cell.link >= static_cast<std::int32_t>(std::size(links::kLinks))) return;
  const links::LinkRule& rule = links::kLinks[cell.link];
  if (!Applies(rule.when, cell)) return;
  cell.url = rule.page;
  for (const links::LinkParameter& parameter : rule.parameters) AppendParameter(cell, parameter);
  if (rule.sort == links::LinkSort::ByModifiedDate) AppendModifiedDateSort(cell.url, cell.display);
  if (rule.missing == links::MissingServer::Grey && cell.row.GetField("Missing") == "1")
    cell.color = kMissingServerColor;
}

// The page's first table, the folders, is left as it is; its second, the messages, is sorted.
void AppendModifiedDateSort(std::string& url, const Display& display) {
  const Context names;
  display.AppendParamToURL(url, names.szSortFieldParameterName(), "");
  display.AppendParamToURL(url, names.szSortFieldParameterName(), "ModifiedDate");
  display.AppendParamToURL(url, names.szSortOrderParameterName(), "");
  display.AppendParamToURL(url, names.szSortOrderParameterName(), TableConstants().gszAscendingSort());
}

}  // namespace kalvo
