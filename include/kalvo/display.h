#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "kalvo/platform/locale.h"
#include "kalvo/platform/value.h"

namespace kalvo {

class ScriptingContext;
class Server;

// An image: its path as a page below one of the console's folders sees it, and its size in pixels.
struct ImageView {
  std::string_view path;
  std::int16_t width = 0;
  std::int16_t height = 0;
};

// An image that a page may have chosen.
struct Image {
  std::string path;
  std::int16_t width = 0;
  std::int16_t height = 0;

  Image() = default;
  Image(std::string_view imagePath, std::int16_t imageWidth, std::int16_t imageHeight)
      : path(imagePath), width(imageWidth), height(imageHeight) {}
  explicit Image(const ImageView& image) : Image(image.path, image.width, image.height) {}
  operator ImageView() const { return {path, width, height}; }
};

// The tag of a cell. Spans are texts, "" for none; the attribute values are encoded when they are written.
struct CellLayout {
  bool header = false;
  std::string_view rowSpan = {};
  std::string_view columnSpan = {};
  std::string_view align = {};
  std::string_view vAlign = {};
  bool noWrap = false;
  std::string_view color = {};
};

// The HTML vocabulary of the rows: cells, rows, anchors, images, inputs and formatted values are made here, so that all
// tables share one set of tags, attribute orders, line breaks and image paths. The frame around a table, the folder
// path and a message's details have tags of their own, beside the code that writes them. Nothing is written to the
// response. One for a page, on one thread; builders that encode work between `OnStartPage` and `OnEndPage` and fail
// with 91 outside of it. Content is never encoded, attribute values always are.
//
// Each text has one maker that appends to a buffer; the published operation of the same text wraps it.
class Display : public Object {
 public:
  explicit Display(const Locale& locale = kEnglishUnitedStates);

  // Takes Response, Request, Session and Server from the page host, in that order, and forgets the bookmark.
  void OnStartPage(ScriptingContext& ASPScriptingContext);
  void OnEndPage();

  // ---- images a page may replace ------------------------------------------------------------------------

  const Image& MessageGraphicID() const { return message_; }
  void SetMessageGraphicID(const Image& image) { message_ = image; }
  const Image& FolderGraphicID() const { return folder_; }
  void SetFolderGraphicID(const Image& image) { folder_ = image; }
  const Image& AttachmentGraphicID() const { return attachment_; }
  void SetAttachmentGraphicID(const Image& image) { attachment_ = image; }
  const Image& NoAttachmentGraphicID() const { return noAttachment_; }
  void SetNoAttachmentGraphicID(const Image& image) { noAttachment_ = image; }

  // ---- tables, rows, cells ------------------------------------------------------------------------------

  // The start of a report's table. The bookmark goes into the sort links of the header cells that follow.
  std::string DetailTableStart(std::string_view szBookmark);
  std::string DetailTableEnd() const;

  // ` name="value"`: one attribute with a leading blank, its value encoded.
  std::string AddInputField(const Value& szInputField, const Value& szValue) const;

  // The same, or nothing when the value is null, empty or "". Zero and false are values.
  std::string AddInputFieldIfNotNull(const Value& szInputField, const Value& szValue) const;

  // One cell. Content of nothing but blanks and tabs becomes "&nbsp;", other content is written as it is.
  // Spans count above 1; `bNoWrap` counts when it is exactly true (or -1).
  std::string MultipleRowData(std::string_view szValue, const Value& bHeader, const Value& nRows, const Value& nColumns,
                              const Value& szAlign, const Value& szVAlign, const Value& bNoWrap,
                              const Value& szColor) const;
  std::string SimpleRowData(std::string_view szValue) const;
  std::string EmptyRowData() const;
  std::string TableRowStart() const;
  std::string TableRowEnd() const;

  // A header cell: the title and below it the two sort arrows, or a spacer when `szDownSortLink` is "".
  // `szLineLink` and `szHistoryLink` are accepted and ignored.
  std::string TableHeaderCell(std::string_view szHeaderText, std::string_view szUpSortLink,
                              std::string_view szDownSortLink, std::string_view szLineLink,
                              std::string_view szHistoryLink) const;

  // ---- images, inputs, anchors, forms -------------------------------------------------------------------

  // `<img border="0" src="../Images/Controls/Up.gif" width="20" height="16">`, with `alt` first when there is
  // one. Nothing is encoded.
  std::string GraphicInput(const Image& GraphicID, const Value& szAlt) const;

  // An input tag, left open for further attributes.
  std::string FormInputTypeName(const Value& szType, const Value& szName) const;

  std::string AnchorStart(std::string_view szLink, std::string_view szBookmark = "",
                          std::string_view szTarget = "") const;
  std::string AnchorEnd() const;
  std::string Anchor(std::string_view szLink, std::string_view szBookmark, std::string_view szTarget,
                     std::string_view szContent) const;

  // A checkbox, or the picture of one when it may not be edited.
  std::string FormCheckboxInput(const Value& szName, const Value& szValue, const Value& bChecked,
                                const Value& szOnClick, const Value& bEdit) const;

  // The form that asks the console to delete a message. No value is encoded; no page host is needed.
  std::string DeleteMessageForm(std::string_view szServerName, std::string_view szMailboxName,
                                std::string_view szFolderId, std::string_view szMessageId, std::int32_t Flags,
                                std::string_view szContinueUrl) const;

  // ---- values -------------------------------------------------------------------------------------------

  // A number with digits grouped, and two decimals when `bDecimal` is true. Null becomes 0, in the caller's
  // variable too. Fails with 13 for a value that is not a number.
  std::string Kalvo_FormatNumber(Value& nNumber, const Value& bDecimal) const;

  // The number divided by the scale, two decimals, the units behind it: "1.50KB". Negative numbers stand in
  // brackets with the units outside: "(2.00)KB". Null gives the default; zero is never divided. Fails with 13
  // for a value that is not a number, with 11 for a scale of 0.
  std::string Kalvo_FormatNumericValue(const Value& nNumber, const Value& nScale, const Value& szUnits,
                                       const Value& szDefault) const;

  // A date text in the general date format; the default for what is not a date, and for years up to 1950; "" for a
  // default that is needed and no text. Clears the pending error. Never raises.
  std::string Kalvo_FormatDateTime(const Value& nDate, const Value& szDefault) const;

  // A date or its serial number in the general date format; "" for what is neither, and the error of reading it is
  // then the pending one; no older one is. Never raises.
  std::string Kalvo_FormatDateTimeFloat(const Value& nDate) const;

  // Without the blanks and tabs at both ends. Other white space is content.
  std::string TrimTabsAndSpaces(std::string_view szInput) const;

  // The URL with one more parameter; the name as it is, the value encoded. An empty name adds nothing.
  std::string AddParamToURL(std::string_view pURL, std::string_view szName, std::string_view szValue) const;

  // ---- the makers, for rows -----------------------------------------------------------------------------

  void AppendDetailTableStart(std::string& out, std::string_view szBookmark);
  void AppendDetailTableEnd(std::string& out) const;
  void AppendInputField(std::string& out, std::string_view name, std::string_view value) const;
  void AppendCellStart(std::string& out, const CellLayout& layout) const;
  void AppendCellEnd(std::string& out, const CellLayout& layout) const;
  void AppendCell(std::string& out, std::string_view content, const CellLayout& layout = {}) const;
  void AppendTableRowStart(std::string& out) const;
  void AppendTableRowEnd(std::string& out) const;
  void AppendTableHeaderCell(std::string& out, std::string_view szHeaderText, std::string_view szUpSortLink,
                             std::string_view szDownSortLink) const;
  void AppendGraphicInput(std::string& out, const ImageView& image, std::string_view szAlt) const;
  void AppendAnchorStart(std::string& out, std::string_view szLink, std::string_view szBookmark,
                         std::string_view szTarget) const;
  void AppendAnchor(std::string& out, std::string_view szLink, std::string_view szBookmark, std::string_view szTarget,
                    std::string_view szContent) const;
  void AppendFormCheckboxInput(std::string& out, std::string_view name, std::string_view value, bool checked,
                               std::string_view onClick, bool edit) const;
  // The same box in two pieces, for who puts the value between them.
  void AppendCheckboxStart(std::string& out, std::string_view name) const;
  void AppendCheckboxEnd(std::string& out, bool checked, std::string_view onClick) const;

  // `<input type="hidden" name="InGroup" value="1">`. Nothing is encoded.
  void AppendHiddenInput(std::string& out, std::string_view name, std::string_view value) const;
  void AppendDeleteMessageForm(std::string& out, std::string_view szServerName, std::string_view szMailboxName,
                               std::string_view szFolderId, std::string_view szMessageId, std::int32_t Flags,
                               std::string_view szContinueUrl) const;

  // Of a number, and of a text that must be one.
  void AppendNumber(std::string& out, double number, bool decimal) const;
  void AppendNumber(std::string& out, std::string_view number, bool decimal) const;
  void AppendNumericValue(std::string& out, double number, double scale, std::string_view units) const;
  void AppendNumericValue(std::string& out, std::string_view number, double scale, std::string_view units) const;
  void AppendDateTime(std::string& out, std::string_view date, std::string_view defaultText) const;  // clears errors
  void AppendDateTimeFloat(std::string& out, std::string_view date) const;

  // Extends a URL in place by one parameter.
  void AppendParamToURL(std::string& url, std::string_view szName, std::string_view szValue) const;

  const Locale& PageLocale() const { return locale_; }

  // Whether the page's encoder sees how it is called, or is not there at all.
  bool SeesCalls() const;

 private:
  void AppendSortLinkRow(std::string& out, std::string_view up, std::string_view down) const;
  void AppendSortLink(std::string& out, std::string_view link, const ImageView& image, std::string_view alt) const;
  void AppendInputFieldIfNotNull(std::string& out, std::string_view name, std::string_view value) const;

  const Locale& locale_;
  Image message_, folder_, attachment_, noAttachment_;
  std::string bookmark_;
  std::shared_ptr<Server> server_;
};

// Content without the blanks and tabs at both ends, as a view into it.
std::string_view TrimmedTabsAndSpaces(std::string_view text);

}  // namespace kalvo
