#include "host/script/binding/classes/members.h"

#include "kalvo/context.h"

namespace kalvo::host {
namespace {

// clang-format off
constexpr Member kContext[] = {
  Method<&Context::OnStartPage>("OnStartPage", {{"ASPScriptingContext"}}),
  Method<&Context::OnEndPage>("OnEndPage"),
  Method<&Context::GetName>("GetName"),
  Method<&Context::SetName>("SetName", {{"Name"}}),
  Method<&Context::GetOrg>("GetOrg"),
  Method<&Context::SetOrg>("SetOrg", {{"Org"}}),
  Method<&Context::GetSite>("GetSite"),
  Method<&Context::SetSite>("SetSite", {{"Site"}}),
  Method<&Context::GetMailbox>("GetMailbox"),
  Method<&Context::SetMailbox>("SetMailbox", {{"Mailbox"}}),
  Method<&Context::GetContainer>("GetContainer"),
  Method<&Context::SetContainer>("SetContainer", {{"Container"}}),
  Method<&Context::GetTopN>("GetTopN"),
  Method<&Context::SetTopN>("SetTopN", {{"TopNTypeInput"}}),
  Property<&Context::TableIndex>("TableIndex"),
  Method<&Context::IncrementTableIndex>("IncrementTableIndex"),
  Method<&Context::GetSession>("GetSession"),
  Method<&Context::GetRequest>("GetRequest"),
  Method<&Context::ServerHTMLEncode>("ServerHTMLEncode", {{"szData"}}),
  Method<&Context::ServerURLEncode>("ServerURLEncode", {{"szData"}}),
  Property<&Context::szSortFieldParameterName>("szSortFieldParameterName"),
  Property<&Context::szSortOrderParameterName>("szSortOrderParameterName"),
  Method<&Context::TableURLParameter>("TableURLParameter",
    {{"szAmp"}, {"szSortParameterName"}, {"nSortCount"}, {"szSortString"}}),
  Method<&Context::TableURL>("TableURL",
    {{"szSortFieldString"}, {"szSortOrderString"}, {"szFirstRowString"}, {"szPageSizeString"}}),
  Method<&Context::TableSortFieldInformation>("TableSortFieldInformation"),
  Method<&Context::TableSortOrderInformation>("TableSortOrderInformation"),
  Method<&Context::TableFirstRowInformation>("TableFirstRowInformation"),
  Method<&Context::TablePageSizeInformation>("TablePageSizeInformation"),
  Method<&Context::FailureMessage>("FailureMessage", {{"szDescription"}, {"bWriteErrDetails", false}}),
  Method<&Context::Failure>("Failure", {{"szDescription"}}),
  Method<&Context::DebugOutput>("DebugOutput", {{"szDebugType"}, {"szMessage"}}),
  Method<&Context::TableDebugOutput>("TableDebugOutput", {{"szMessage"}}),
  Method<&Context::bDebug>("bDebug", {{"szDebugType"}}),
  Property<&Context::bDebugTable>("bDebugTable"),
  Method<&Context::EncapsulateGotoContainerFailure>("EncapsulateGotoContainerFailure",
    {{"pLiveContainer"}, {"ServerName"}, {"MailboxName"}, {"ContainerName"}, {"OldThreshold"}, {"Flags"},
    {"szErrorString"}, {"bDefect7022Workaround", false}}),
  Method<&Context::EncapsulateGotoMsgAttachmentFailure>("EncapsulateGotoMsgAttachmentFailure",
    {{"pLiveContainer"}, {"szServerName"}, {"szMailboxName"}, {"szMessageId"}, {"bMailboxMessage"},
    {"szErrorString"}}),
  Method<&Context::KalvoAdministrator>("KalvoAdministrator"),
  Method<&Context::DrillDownPermission>("DrillDownPermission", {{"szServerName"}, {"szMailboxName"}}),
  Method<&Context::KalvoCreatedMailboxName>("KalvoCreatedMailboxName", {{"szServerName"}}),
};
// clang-format on

}  // namespace

std::span<const Member> ContextMembers() { return kContext; }

}  // namespace kalvo::host
