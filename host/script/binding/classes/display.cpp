#include "host/script/binding/classes/members.h"

#include "kalvo/display.h"

namespace kalvo::host {
namespace {

// clang-format off
constexpr Member kDisplay[] = {
  Property<&Display::MessageGraphicID, &Display::SetMessageGraphicID>("MessageGraphicID",
    "The image of a message. An image is an array of path, width and height in pixels; fails with 13 for "
    "anything else and with 9 for a shorter array."),
  Property<&Display::FolderGraphicID, &Display::SetFolderGraphicID>("FolderGraphicID",
    "The image of a folder. An image is an array of path, width and height in pixels; fails with 13 for "
    "anything else and with 9 for a shorter array."),
  Property<&Display::AttachmentGraphicID, &Display::SetAttachmentGraphicID>("AttachmentGraphicID",
    "The image of a message with attachments. An image is an array of path, width and height in pixels; fails "
    "with 13 for anything else and with 9 for a shorter array."),
  Property<&Display::NoAttachmentGraphicID, &Display::SetNoAttachmentGraphicID>("NoAttachmentGraphicID",
    "The image of a message without attachments. An image is an array of path, width and height in pixels; "
    "fails with 13 for anything else and with 9 for a shorter array."),
  Method<&Display::OnStartPage>("OnStartPage", {{"ASPScriptingContext"}},
    "Takes Response, Request, Session and Server, and forgets the bookmark. Fails with 424 for what is no "
    "object."),
  Method<&Display::OnEndPage>("OnEndPage",
    "Lets go of the page."),
  Method<&Display::DetailTableStart>("DetailTableStart", {{"szBookmark"}},
    "Answers the start of a table. The bookmark goes into the sort links of the header cells that follow."),
  Method<&Display::DetailTableEnd>("DetailTableEnd",
    "Answers the end of a table."),
  Method<&Display::AddInputField>("AddInputField", {{"szInputField"}, {"szValue"}},
    "Answers one attribute, its value encoded: ` name=\"value\"`. Fails with 91 without a page."),
  Method<&Display::AddInputFieldIfNotNull>("AddInputFieldIfNotNull", {{"szInputField"}, {"szValue"}},
    "Answers the same; \"\" for a value that is null, undefined or \"\"."),
  Method<&Display::MultipleRowData>("MultipleRowData", {{"szValue"}, {"bHeader"}, {"nRows"}, {"nColumns"}, {"szAlign"},
    {"szVAlign"}, {"bNoWrap"}, {"szColor"}},
    "Answers one cell. `nRows` and `nColumns` are what it spans, where above 1; `szValue` is written as it "
    "is, and nothing but blanks as \"&nbsp;\"."),
  Method<&Display::SimpleRowData>("SimpleRowData", {{"szValue"}},
    "Answers one cell with a text that is written as it is: encode it with `Server.HTMLEncode`."),
  Method<&Display::EmptyRowData>("EmptyRowData",
    "Answers one cell of \"&nbsp;\"."),
  Method<&Display::TableRowStart>("TableRowStart",
    "Answers the start of a row."),
  Method<&Display::TableRowEnd>("TableRowEnd",
    "Answers the end of a row."),
  Method<&Display::TableHeaderCell>("TableHeaderCell",
    {{"szHeaderText"}, {"szUpSortLink"}, {"szDownSortLink"}, {"szLineLink"}, {"szHistoryLink"}},
    "Answers a header cell: a title and below it two sort arrows, none where `szDownSortLink` is \"\". "
    "`szLineLink` and `szHistoryLink` are accepted and ignored."),
  Method<&Display::GraphicInput>("GraphicInput", {{"GraphicID"}, {"szAlt"}},
    "Answers an image tag; nothing is encoded. An image is an array of path, width and height in pixels; "
    "fails with 13 for anything else and with 9 for a shorter array."),
  Method<&Display::FormInputTypeName>("FormInputTypeName", {{"szType"}, {"szName"}},
    "Answers the start of an input tag, left open for further attributes."),
  Method<&Display::AnchorStart>("AnchorStart", {{"szLink"}, {"szBookmark", ""}, {"szTarget", ""}},
    "Answers the start of a link."),
  Method<&Display::AnchorEnd>("AnchorEnd",
    "Answers the end of a link."),
  Method<&Display::Anchor>("Anchor", {{"szLink"}, {"szBookmark"}, {"szTarget"}, {"szContent"}},
    "Answers a whole link with its content, which is written as it is."),
  Method<&Display::FormCheckboxInput>("FormCheckboxInput",
    {{"szName"}, {"szValue"}, {"bChecked"}, {"szOnClick"}, {"bEdit"}},
    "Answers a checkbox, or the picture of one where `bEdit` is false."),
  Method<&Display::DeleteMessageForm>("DeleteMessageForm",
    {{"szServerName"}, {"szMailboxName"}, {"szFolderId"}, {"szMessageId"}, {"Flags"}, {"szContinueUrl"}},
    "Answers the form that asks the console to delete a message. Nothing is encoded."),
  Method<&Display::Kalvo_FormatNumber>("Kalvo_FormatNumber", {{"nNumber"}, {"bDecimal"}},
    "Answers a number with its digits grouped, with two decimals when `bDecimal` is true; null is 0. Fails "
    "with 13 for what is no number, \"\" among it."),
  Method<&Display::Kalvo_FormatNumericValue>("Kalvo_FormatNumericValue",
    {{"nNumber"}, {"nScale"}, {"szUnits"}, {"szDefault"}},
    "Answers a number divided by `nScale`, with two decimals and the units behind it: \"1.50KB\", "
    "\"(2.00)KB\". Null gives the default. Fails with 13 for what is no number, with 11 for a scale of 0."),
  Method<&Display::Kalvo_FormatDateTime>("Kalvo_FormatDateTime", {{"nDate"}, {"szDefault"}},
    "Answers a date text in the host's form; the default for what is no date and for years up to 1950. Raises "
    "nothing."),
  Method<&Display::Kalvo_FormatDateTimeFloat>("Kalvo_FormatDateTimeFloat", {{"nDate"}},
    "Answers a date, or its number of days since 1899-12-30, in the host's form; \"\" for what is neither. "
    "Raises nothing."),
  Method<&Display::TrimTabsAndSpaces>("TrimTabsAndSpaces", {{"szInput"}},
    "Answers a text without the blanks and tabs at both ends."),
  Method<&Display::AddParamToURL>("AddParamToURL", {{"pURL"}, {"szName"}, {"szValue"}},
    "Answers an address with one more parameter: the name as it is, the value encoded. An empty name adds "
    "nothing."),
};
// clang-format on

}  // namespace

std::span<const Member> DisplayMembers() { return kDisplay; }

}  // namespace kalvo::host
