#include "host/script/binding/classes/members.h"

#include "kalvo/display.h"

namespace kalvo::host {
namespace {

// clang-format off
constexpr Member kDisplay[] = {
  Property<&Display::MessageGraphicID, &Display::SetMessageGraphicID>("MessageGraphicID"),
  Property<&Display::FolderGraphicID, &Display::SetFolderGraphicID>("FolderGraphicID"),
  Property<&Display::AttachmentGraphicID, &Display::SetAttachmentGraphicID>("AttachmentGraphicID"),
  Property<&Display::NoAttachmentGraphicID, &Display::SetNoAttachmentGraphicID>("NoAttachmentGraphicID"),
  Method<&Display::OnStartPage>("OnStartPage", {{"ASPScriptingContext"}}),
  Method<&Display::OnEndPage>("OnEndPage"),
  Method<&Display::DetailTableStart>("DetailTableStart", {{"szBookmark"}}),
  Method<&Display::DetailTableEnd>("DetailTableEnd"),
  Method<&Display::AddInputField>("AddInputField", {{"szInputField"}, {"szValue"}}),
  Method<&Display::AddInputFieldIfNotNull>("AddInputFieldIfNotNull", {{"szInputField"}, {"szValue"}}),
  Method<&Display::MultipleRowData>("MultipleRowData", {{"szValue"}, {"bHeader"}, {"nRows"}, {"nColumns"}, {"szAlign"},
    {"szVAlign"}, {"bNoWrap"}, {"szColor"}}),
  Method<&Display::SimpleRowData>("SimpleRowData", {{"szValue"}}),
  Method<&Display::EmptyRowData>("EmptyRowData"),
  Method<&Display::TableRowStart>("TableRowStart"),
  Method<&Display::TableRowEnd>("TableRowEnd"),
  Method<&Display::TableHeaderCell>("TableHeaderCell",
    {{"szHeaderText"}, {"szUpSortLink"}, {"szDownSortLink"}, {"szLineLink"}, {"szHistoryLink"}}),
  Method<&Display::GraphicInput>("GraphicInput", {{"GraphicID"}, {"szAlt"}}),
  Method<&Display::FormInputTypeName>("FormInputTypeName", {{"szType"}, {"szName"}}),
  Method<&Display::AnchorStart>("AnchorStart", {{"szLink"}, {"szBookmark", ""}, {"szTarget", ""}}),
  Method<&Display::AnchorEnd>("AnchorEnd"),
  Method<&Display::Anchor>("Anchor", {{"szLink"}, {"szBookmark"}, {"szTarget"}, {"szContent"}}),
  Method<&Display::FormCheckboxInput>("FormCheckboxInput",
    {{"szName"}, {"szValue"}, {"bChecked"}, {"szOnClick"}, {"bEdit"}}),
  Method<&Display::DeleteMessageForm>("DeleteMessageForm",
    {{"szServerName"}, {"szMailboxName"}, {"szFolderId"}, {"szMessageId"}, {"Flags"}, {"szContinueUrl"}}),
  Method<&Display::Kalvo_FormatNumber>("Kalvo_FormatNumber", {{"nNumber"}, {"bDecimal"}}),
  Method<&Display::Kalvo_FormatNumericValue>("Kalvo_FormatNumericValue",
    {{"nNumber"}, {"nScale"}, {"szUnits"}, {"szDefault"}}),
  Method<&Display::Kalvo_FormatDateTime>("Kalvo_FormatDateTime", {{"nDate"}, {"szDefault"}}),
  Method<&Display::Kalvo_FormatDateTimeFloat>("Kalvo_FormatDateTimeFloat", {{"nDate"}}),
  Method<&Display::TrimTabsAndSpaces>("TrimTabsAndSpaces", {{"szInput"}}),
  Method<&Display::AddParamToURL>("AddParamToURL", {{"pURL"}, {"szName"}, {"szValue"}}),
};
// clang-format on

}  // namespace

std::span<const Member> DisplayMembers() { return kDisplay; }

}  // namespace kalvo::host
