// What a data cell shows, by the column's format.

#include "columns/link_rules.h"
#include "columns/row_cell.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/owned.h"
#include "kalvo/platform/page_host.h"
#include "kalvo/row_source.h"

namespace kalvo {

namespace {

constexpr double kStateManaged = 2;
constexpr double kStateSucceeded = 2;
constexpr double kDirectoryStore = 2;

const std::string& ReadValue(RowCell& cell) { return cell.value = cell.row.GetField(Held(cell.column)->databaseField); }

double ReadNumber(RowCell& cell) { return NumberOf(ReadValue(cell)); }

// A field that holds a code; text that is no number is no code.
bool FieldEquals(RowSource& row, std::string_view field, double code) {
  const auto number = ParseNumber(row.GetField(field));
  return number && *number == code;
}

void FormatBackupDateTime(RowCell& cell) {
  ReadValue(cell);
  if (cell.row.GetField("LastQuickScan").empty()) {
    cell.text = "Never Scanned";
  } else if (cell.value.empty()) {
    cell.text = "No Successful Backup";
  } else {
    cell.display.AppendDateTime(cell.text, cell.value, "No Successful Backup");
  }
}

// "1hr&nbsp;02min&nbsp;5sec". Kept: minutes are padded, seconds are not.
void AppendDuration(std::string& out, std::int32_t duration) {
  const std::int32_t seconds = duration % 60;
  const std::int32_t minutes = (duration - seconds) % 3600 / 60;
  const std::int32_t hours = (duration - seconds - minutes * 60) / 3600;
  Append(out, hours, "hr&nbsp;", minutes < 10 ? "0" : "", minutes, "min&nbsp;", seconds, "sec");
}

// ---- membership of a group ------------------------------------------------------------------------------

void FormatMembership(RowCell& cell) {
  const std::string index = Built([&](std::string& out) { Append(out, cell.row.GetRowIndex()); });
  cell.row.GetField("GroupName");
  const bool member = ReadValue(cell) == "FALSE";
  // A member of the default group cannot be taken out of it.
  const bool fixed = FieldEquals(cell.row, "DefaultGroup", 1) && member;
  if (member) Append(cell.text, "<input type=\"hidden\" name=\"InGroup\" value=\"", index, "\">");
  Append(cell.text, "<input type=\"hidden\" name=\"Identifier\" value=\"", cell.row.GetField("Identifier"), "\">");
  cell.display.AppendFormCheckboxInput(cell.text, "Include", index, member, "", !fixed);
}

// ---- pictures -------------------------------------------------------------------------------------------

void AppendMessagePicture(RowCell& cell, std::string_view attachmentField) {
  cell.display.AppendGraphicInput(cell.text, cell.display.MessageGraphicID(), "");
  const bool attached = cell.row.GetField(attachmentField) != "0";
  const Image& second = attached ? cell.display.AttachmentGraphicID() : cell.display.NoAttachmentGraphicID();
  cell.display.AppendGraphicInput(cell.text, second, "");
}

void AppendDeleteForm(RowCell& cell, bool publicFolder) {
  const Context& context = cell.context;
  const Display& display = cell.display;
  const auto request = context.GetRequest();
  const std::string folderId = request->Item(publicFolder ? "PublicFolderId" : "ContainerId");
  std::string continueUrl(publicFolder ? links::kPublicFolders : links::kMailboxPage);
  display.AppendParamToURL(continueUrl, "Server", context.GetName());
  display.AppendParamToURL(continueUrl, "Mailbox", context.GetMailbox());
  if (!publicFolder) display.AppendParamToURL(continueUrl, "Container", request->Item("Container"));
  display.AppendParamToURL(continueUrl, publicFolder ? "PublicFolderId" : "ContainerId", folderId);
  const std::int32_t flags = publicFolder ? 4 : 0;
  const std::string server = context.GetName();
  const std::string mailbox = context.GetMailbox();
  display.AppendDeleteMessageForm(cell.text, server, mailbox, folderId, cell.row.GetField("ExchangeId"), flags,
                                  continueUrl);
}

void FormatImage(RowCell& cell) {
  switch (cell.column->id) {
    case COL_TOPN_MailboxFolder_ModifiedDateSort_Graphic:
    case COL_MAPI_FOLDERGRAPHIC: cell.display.AppendGraphicInput(cell.text, cell.display.FolderGraphicID(), ""); break;
    case COL_TOPN_MailboxMessage_Graphic:
    case COL_TOPN_PublicFolderMessage_Graphic: AppendMessagePicture(cell, "18"); break;
    case COL_MAPI_MESSAGEGRAPHIC:
    case COL_MAPI_PUBLICFOLDERMESSAGEGRAPHIC: AppendMessagePicture(cell, "HasAttachment"); break;
    case COL_MAPI_DeleteMailboxMessage: AppendDeleteForm(cell, false); break;
    case COL_MAPI_DeletePublicFolderMessage: AppendDeleteForm(cell, true); break;
    default: break;
  }
}

// ---- alerted resources ----------------------------------------------------------------------------------

void FormatAlertedResource(RowCell& cell) {
  ReadValue(cell);
  cell.context.AppendServerHTMLEncode(cell.text, cell.value);
  cell.alertedResource = true;
  const std::string_view kind = cell.row.GetField("Attrib3");
  for (const links::AlertedResourceRow& resource : links::kAlertedResources) {
    if (!EqualsIgnoringCase(kind, resource.attrib3)) continue;
    const auto code = ParseNumber(resource.alertTypeCode);
    if (!code || FieldEquals(cell.row, "AlertTypeCode", *code)) cell.link = resource.link;
    return;
  }
}

}  // namespace

void FormatCell(RowCell& cell) {
  const Display& display = cell.display;
  switch (cell.column->formatType) {
    case FORMATTYPE_NUMERICVALUE:
      if (ReadValue(cell).empty()) break;
      display.AppendNumericValue(cell.text, cell.value, cell.column->dataScale, cell.column->units);
      break;
    case FORMATTYPE_NUMBER:
      if (!ReadValue(cell).empty()) display.AppendNumber(cell.text, cell.value, false);
      break;
    case FORMATTYPE_DATETIME:
      if (!ReadValue(cell).empty()) display.AppendDateTime(cell.text, cell.value, "");
      break;
    case FORMATTYPE_BackupDateTime: FormatBackupDateTime(cell); break;
    case FORMATTYPE_TIME:
      if (!ReadValue(cell).empty()) AppendDuration(cell.text, ToInt32(NumberOf(cell.value)));
      break;
    case FORMATTYPE_DATETIMEFLOAT:
      if (!ReadValue(cell).empty()) display.AppendDateTimeFloat(cell.text, cell.value);
      break;
    case FORMATTYPE_MEMBERSHIPCHECKBOX: FormatMembership(cell); break;
    case FORMATTYPE_SERVERSTATE:
      cell.text = ToInt16(ReadNumber(cell)) == kStateManaged ? "Managed" : "Unmanaged";
      break;
    case FORMATTYPE_IMAGE: FormatImage(cell); break;
    case FORMATTYPE_STATUS: cell.text = ReadNumber(cell) == kStateSucceeded ? "Succeeded" : "Failed"; break;
    case FORMATTYPE_BACKUPTYPE: cell.text = ReadNumber(cell) == kDirectoryStore ? "Dir Store" : "Info Store"; break;
    case FORMATTYPE_ALERTEDRESOURCE: FormatAlertedResource(cell); break;
    default: cell.context.AppendServerHTMLEncode(cell.text, ReadValue(cell)); break;
  }
}

}  // namespace kalvo
