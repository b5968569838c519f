#pragma once

#include <string>
#include <string_view>

#include "columns/link_rules.h"
#include "kalvo/codes.h"
#include "kalvo/column.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

// What a data cell shows and where it leads, whoever makes it. A `Cell` has
//
//   Column()                  the facts of its column, as they are now
//   Read(), Value()           reads the column's field; what was read last
//   Field(f)                  another field of the row
//   Put..., PutFragment       append a value, or a piece that some formats alone have, to what the cell shows
//   link, alertedResource     what the format has decided
//
// and its fields answer `IsEmpty()`, `Is(text)`, `Number()` (nothing for what is none) and `RequiredNumber()`, which
// fails with 13 there. The order of the calls is what a page's own row source sees.
namespace kalvo::rules {

inline constexpr double kStateSucceeded = 2;
inline constexpr double kDirectoryStore = 2;
inline constexpr std::string_view kMissingServerColor = "#CCCCCC";
inline constexpr std::string_view kNoBackup = "No Successful Backup";
inline constexpr std::string_view kEmptyLink = "&nbsp;&nbsp;&nbsp;";  // a link needs something to click on

// "1hr&nbsp;02min&nbsp;5sec". Kept: minutes are padded, seconds are not; pages show it so.
inline std::string Duration(std::int32_t duration) {
  const std::int32_t seconds = duration % 60;
  const std::int32_t minutes = (duration - seconds) % 3600 / 60;
  const std::int32_t hours = (duration - seconds - minutes * 60) / 3600;
  return Built([&](std::string& out) {
    Append(out, hours, "hr&nbsp;", minutes < 10 ? "0" : "", minutes, "min&nbsp;", seconds, "sec");
  });
}

template <typename Cell>
void FormatBackupDateTime(Cell& cell) {
  cell.Read();
  if (cell.Field(RowField::LastQuickScan).IsEmpty()) {
    cell.Put("Never Scanned");
  } else if (cell.Value().IsEmpty()) {
    cell.Put(kNoBackup);
  } else {
    cell.PutDateTime(kNoBackup);
  }
}

template <typename Cell>
void FormatAlertedResource(Cell& cell) {
  cell.Read();
  cell.PutHtml();
  cell.alertedResource = true;
  const auto kind = cell.Field(RowField::Attrib3);
  for (const links::AlertedResourceRow& resource : links::kAlertedResources) {
    if (!kind.IsWord(resource.attrib3)) continue;
    const std::int32_t code = resource.alertTypeCode;
    if (code == 0 || cell.Field(RowField::AlertTypeCode).Number() == code) cell.link = resource.link;
    return;
  }
}

// Appends what the cell shows, by the column's format. Fails with 13 for a value that the format cannot read.
template <typename Cell>
void Format(Cell& cell) {
  switch (cell.Column().formatType) {
    case FORMATTYPE_NUMERICVALUE:
      if (!cell.Read().IsEmpty()) cell.PutNumericValue();
      break;
    case FORMATTYPE_NUMBER:
      if (!cell.Read().IsEmpty()) cell.PutNumber();
      break;
    case FORMATTYPE_DATETIME:
      if (!cell.Read().IsEmpty()) cell.PutDateTime("");
      break;
    case FORMATTYPE_BackupDateTime: FormatBackupDateTime(cell); break;
    case FORMATTYPE_TIME:
      if (!cell.Read().IsEmpty()) cell.Put(Duration(ToInt32(cell.Value().RequiredNumber())));
      break;
    case FORMATTYPE_DATETIMEFLOAT:
      if (!cell.Read().IsEmpty()) cell.PutDateTimeFloat();
      break;
    case FORMATTYPE_SERVERSTATE:
      cell.Put(ToInt16(cell.Read().RequiredNumber()) == kServerManaged ? "Managed" : "Unmanaged");
      break;
    case FORMATTYPE_STATUS: cell.Put(cell.Read().RequiredNumber() == kStateSucceeded ? "Succeeded" : "Failed"); break;
    case FORMATTYPE_BACKUPTYPE:
      cell.Put(cell.Read().RequiredNumber() == kDirectoryStore ? "Dir Store" : "Info Store");
      break;
    case FORMATTYPE_ALERTEDRESOURCE: FormatAlertedResource(cell); break;
    case FORMATTYPE_MEMBERSHIPCHECKBOX:
    case FORMATTYPE_IMAGE: cell.PutFragment(); break;
    default:
      cell.Read();
      cell.PutHtml();
      break;
  }
}

// The rule by which the cell is a link; null where it leads nowhere.
template <typename Cell>
const links::LinkRule* Link(Cell& cell) {
  const links::LinkRule* rule = links::RuleOf(cell.link);
  if (!rule || rule->when == links::LinkWhen::Always) return rule;
  if (cell.Value().IsEmpty()) return nullptr;
  bool applies = false;
  if (rule->when == links::LinkWhen::ServerIsManaged) {
    const auto state = cell.Field(RowField::ServerState);
    applies = state.IsEmpty() || state.Number() == kServerManaged;
  } else {
    applies = cell.Field(RowField::AlertTypeCode).Number() != alerts::kNewServer;
  }
  return applies ? rule : nullptr;
}

// Whether the server that a link leads to has disappeared.
template <typename Cell>
bool IsMissing(Cell& cell, const links::LinkRule& rule) {
  return rule.missing == links::MissingServer::Grey && cell.Field(RowField::Missing).Is("1");
}

}  // namespace kalvo::rules
