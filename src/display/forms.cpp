// Images, anchors, inputs and the delete-message form.

#include "display/images.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/owned.h"
#include "kalvo/platform/page_host.h"

namespace kalvo {

// ---- images ---------------------------------------------------------------------------------------------

std::string Display::GraphicInput(const Image& GraphicID, const Value& szAlt) const {
  return Built([&](std::string& out) { AppendGraphicInput(out, GraphicID, ToText(szAlt, locale_)); });
}

void Display::AppendGraphicInput(std::string& out, const ImageView& image, std::string_view szAlt) const {
  out += "<img";
  if (!szAlt.empty()) Append(out, " alt=\"", szAlt, "\"");
  Append(out, " border=\"0\" src=\"", image.path, "\" width=\"", image.width, "\" height=\"", image.height, "\">");
}

// ---- anchors --------------------------------------------------------------------------------------------

std::string Display::AnchorStart(std::string_view szLink, std::string_view szBookmark,
                                 std::string_view szTarget) const {
  return Built([&](std::string& out) { AppendAnchorStart(out, szLink, szBookmark, szTarget); });
}

void Display::AppendAnchorStart(std::string& out, std::string_view szLink, std::string_view szBookmark,
                                std::string_view szTarget) const {
  out += "<a";
  if (szBookmark.empty()) {
    AppendInputField(out, "href", szLink);
  } else {
    std::string link(szLink);
    link += '#';
    Held(server_)->URLEncode(link, szBookmark);
    AppendInputField(out, "href", link);
  }
  AppendInputFieldIfNotNull(out, "target", szTarget);
  out += '>';
}

std::string Display::AnchorEnd() const { return "</a>"; }

std::string Display::Anchor(std::string_view szLink, std::string_view szBookmark, std::string_view szTarget,
                            std::string_view szContent) const {
  return Built([&](std::string& out) { AppendAnchor(out, szLink, szBookmark, szTarget, szContent); });
}

void Display::AppendAnchor(std::string& out, std::string_view szLink, std::string_view szBookmark,
                           std::string_view szTarget, std::string_view szContent) const {
  AppendAnchorStart(out, szLink, szBookmark, szTarget);
  Append(out, szContent, "</a>");
}

// ---- inputs ---------------------------------------------------------------------------------------------

std::string Display::FormInputTypeName(const Value& szType, const Value& szName) const {
  return Built([&](std::string& out) {
    out += "<input";
    AppendInputField(out, "type", ToText(szType, locale_));
    AppendInputField(out, "name", ToText(szName, locale_));
  });
}

std::string Display::FormCheckboxInput(const Value& szName, const Value& szValue, const Value& bChecked,
                                       const Value& szOnClick, const Value& bEdit) const {
  return Built([&](std::string& out) {
    AppendFormCheckboxInput(out, ToText(szName, locale_), ToText(szValue, locale_), ToBoolean(bChecked),
                            ToText(szOnClick, locale_), ToBoolean(bEdit));
  });
}

void Display::AppendFormCheckboxInput(std::string& out, std::string_view name, std::string_view value, bool checked,
                                      std::string_view onClick, bool edit) const {
  if (!edit) {
    AppendGraphicInput(out, checked ? images::kCheck : images::kEmptyCheck, "");
    return;
  }
  AppendCheckboxStart(out, name);
  AppendInputFieldIfNotNull(out, "value", value);
  AppendCheckboxEnd(out, checked, onClick);
}

void Display::AppendCheckboxStart(std::string& out, std::string_view name) const {
  out += "<input";
  AppendInputField(out, "type", "checkbox");
  AppendInputField(out, "name", name);
}

void Display::AppendCheckboxEnd(std::string& out, bool checked, std::string_view onClick) const {
  if (checked) out += " Checked";
  AppendInputFieldIfNotNull(out, "OnClick", onClick);
  out += '>';
}

void Display::AppendHiddenInput(std::string& out, std::string_view name, std::string_view value) const {
  Append(out, "<input type=\"hidden\" name=\"", name, "\" value=\"", value, "\">");
}

// ---- the delete-message form ----------------------------------------------------------------------------

std::string Display::DeleteMessageForm(std::string_view szServerName, std::string_view szMailboxName,
                                       std::string_view szFolderId, std::string_view szMessageId, std::int32_t Flags,
                                       std::string_view szContinueUrl) const {
  return Built([&](std::string& out) {
    AppendDeleteMessageForm(out, szServerName, szMailboxName, szFolderId, szMessageId, Flags, szContinueUrl);
  });
}

void Display::AppendDeleteMessageForm(std::string& out, std::string_view szServerName, std::string_view szMailboxName,
                                      std::string_view szFolderId, std::string_view szMessageId, std::int32_t Flags,
                                      std::string_view szContinueUrl) const {
  const auto hidden = [&](std::string_view name, std::string_view value) {
    AppendHiddenInput(out, name, value);
    out += kCrLf;
  };
  Append(out, "<form method=\"get\" action=\"/KalvoforExchange/Configuration/Process.asp\" target=\"_top\"",
         " onSubmit=\"return ConfirmDeleteMessage()\">", kCrLf);
  hidden("ProcessType", "DeleteMessage");
  hidden("ServerName", szServerName);
  hidden("MailboxName", szMailboxName);
  hidden("FolderId", szFolderId);
  hidden("MessageId", szMessageId);
  hidden("Flags", std::to_string(Flags));
  hidden("Continue", szContinueUrl);
  Append(out, "<input type=\"submit\" name=\"Delete\" value=\"Delete\">", kCrLf, "</form>");
}

}  // namespace kalvo
