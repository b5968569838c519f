#include "columns/asked_cell.h"

#include "columns/cell_rules.h"
#include "display/message_store.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/owned.h"
#include "kalvo/platform/page_host.h"
#include "kalvo/row_source.h"

namespace kalvo {

void AppendLaidOut(std::string& out, const std::shared_ptr<const ColumnFacts>& column, const Display& display,
                   std::string_view content, std::string_view color) {
  const auto facts = Held(column);
  display.AppendCell(out, content,
                     {.rowSpan = facts->rowSpan,
                      .columnSpan = facts->columnSpan,
                      .align = facts->align,
                      .noWrap = facts->noWrap,
                      .color = color});
}

void AskedCell::AppendTo(std::string& out) {
  rules::Format(*this);
  const links::LinkRule* rule = rules::Link(*this);
  if (!rule) return AppendLaidOut(out, column_, display_, text_, "");
  MakeUrl(*rule);
  const std::string_view color = rules::IsMissing(*this, *rule) ? rules::kMissingServerColor : "";
  const bool blank = TrimmedTabsAndSpaces(text_).empty();
  const std::string anchor = Built([&](std::string& made) {
    display_.AppendAnchor(made, url_, "", "_top", blank ? rules::kEmptyLink : std::string_view(text_));
  });
  AppendLaidOut(out, column_, display_, anchor, color);
}

// ---- fields ---------------------------------------------------------------------------------------------

FieldText AskedCell::Read() {
  value_ = row_.GetField(Held(column_)->databaseField);
  return Value();
}

FieldText AskedCell::Field(RowField field) { return {row_.GetField(NameOf(field))}; }

// ---- what it shows --------------------------------------------------------------------------------------

void AskedCell::PutHtml() { context_.AppendServerHTMLEncode(text_, value_); }
void AskedCell::PutNumber() { display_.AppendNumber(text_, value_, false); }
void AskedCell::PutNumericValue() { display_.AppendNumericValue(text_, value_, column_->dataScale, column_->units); }
void AskedCell::PutDateTime(std::string_view defaultText) { display_.AppendDateTime(text_, value_, defaultText); }
void AskedCell::PutDateTimeFloat() { display_.AppendDateTimeFloat(text_, value_); }

void AskedCell::PutFragment() { column_->formatType == FORMATTYPE_IMAGE ? PutPicture() : PutMembership(); }

void AskedCell::PutMembership() {
  const std::string index = Built([&](std::string& out) { Append(out, row_.GetRowIndex()); });
  Field(RowField::GroupName);
  const bool member = Read().Is("FALSE");
  // A member of the default group cannot be taken out of it.
  const bool fixed = Field(RowField::DefaultGroup).Number() == 1 && member;
  if (member) display_.AppendHiddenInput(text_, "InGroup", index);
  display_.AppendHiddenInput(text_, "Identifier", Field(RowField::Identifier).text);
  display_.AppendFormCheckboxInput(text_, "Include", index, member, "", !fixed);
}

void AskedCell::PutMessagePicture(RowField attachment) {
  display_.AppendGraphicInput(text_, display_.MessageGraphicID(), "");
  const bool attached = !Field(attachment).Is("0");
  display_.AppendGraphicInput(text_, attached ? display_.AttachmentGraphicID() : display_.NoAttachmentGraphicID(), "");
}

void AskedCell::PutDeleteForm(const MessageStore& store) {
  const auto request = context_.GetRequest();
  const std::string folderId = request->Item(store.idParameter);
  const std::string address = ContinueAddress(
      display_, store, context_.GetName(), context_.GetMailbox(), [&] { return request->Item("Container"); }, folderId);
  const std::string server = context_.GetName();
  const std::string mailbox = context_.GetMailbox();
  display_.AppendDeleteMessageForm(text_, server, mailbox, folderId, Field(RowField::ExchangeId).text, store.flags,
                                   address);
}

void AskedCell::PutPicture() {
  switch (column_->id) {
    case COL_TOPN_MailboxFolder_ModifiedDateSort_Graphic:
    case COL_MAPI_FOLDERGRAPHIC: display_.AppendGraphicInput(text_, display_.FolderGraphicID(), ""); break;
    case COL_TOPN_MailboxMessage_Graphic:
    case COL_TOPN_PublicFolderMessage_Graphic: PutMessagePicture(RowField::RankedAttachment); break;
    case COL_MAPI_MESSAGEGRAPHIC:
    case COL_MAPI_PUBLICFOLDERMESSAGEGRAPHIC: PutMessagePicture(RowField::HasAttachment); break;
    case COL_MAPI_DeleteMailboxMessage: PutDeleteForm(kMailboxStore); break;
    case COL_MAPI_DeletePublicFolderMessage: PutDeleteForm(kPublicFolderStore); break;
    default: break;
  }
}

// ---- where it leads -------------------------------------------------------------------------------------

void AskedCell::MakeUrl(const links::LinkRule& rule) {
  url_ = rule.page;
  for (const links::LinkParameter& parameter : rule.parameters) AddParameter(parameter);
  if (rule.sort != links::LinkSort::ByModifiedDate) return;
  for (const auto& [name, value] : links::kModifiedDateSort) display_.AppendParamToURL(url_, name, value);
}

void AskedCell::AddParameter(const links::LinkParameter& parameter) {
  const auto add = [&](std::string_view value) { display_.AppendParamToURL(url_, parameter.name, value); };
  const links::LinkSource& source = parameter.source;
  switch (source.from) {
    case links::From::None: break;
    case links::From::Value: add(value_); break;
    case links::From::Field: add(Field(source.field).text); break;
    case links::From::AlertField: add(Field(alertedResource ? source.field : source.ranked).text); break;
    case links::From::Name: add(context_.GetName()); break;
    case links::From::Mailbox: add(context_.GetMailbox()); break;
    case links::From::MailboxPath:
      add(Built([&](std::string& path) { Append(path, context_.GetMailbox(), '\\', value_); }));
      break;
    case links::From::Request: add(context_.GetRequest()->Item(parameter.name)); break;
  }
}

}  // namespace kalvo
