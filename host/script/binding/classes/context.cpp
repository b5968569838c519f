#include "host/script/binding/classes/members.h"

#include "kalvo/context.h"

namespace kalvo::host {
namespace {

// clang-format off
constexpr Member kContext[] = {
  Method<&Context::OnStartPage>("OnStartPage", {{"ASPScriptingContext"}},
    "Takes Response, Request, Session and Server and reads the query string; counts tables from 0 again. "
    "Fails with 6 when a sort or paging parameter occurs more than 32767 times."),
  Method<&Context::OnEndPage>("OnEndPage",
    "Lets go of the page. Everything else stays."),
  Method<&Context::GetName>("GetName",
    "Answers the name within the scope: what %NAME% of a table means."),
  Method<&Context::SetName>("SetName", {{"Name"}},
    "Sets the name within the scope."),
  Method<&Context::GetOrg>("GetOrg",
    "Answers the organization of the scope."),
  Method<&Context::SetOrg>("SetOrg", {{"Org"}},
    "Sets the organization of the scope: what %ORG% means."),
  Method<&Context::GetSite>("GetSite",
    "Answers the site of the scope."),
  Method<&Context::SetSite>("SetSite", {{"Site"}},
    "Sets the site of the scope: what %SITE% means."),
  Method<&Context::GetMailbox>("GetMailbox",
    "Answers the mailbox of the scope."),
  Method<&Context::SetMailbox>("SetMailbox", {{"Mailbox"}},
    "Sets the mailbox of the scope: what %MAILBOX% means."),
  Method<&Context::GetContainer>("GetContainer",
    "Answers the folder of the scope, as a path."),
  Method<&Context::SetContainer>("SetContainer", {{"Container"}},
    "Sets the folder of the scope, as a path."),
  Method<&Context::GetTopN>("GetTopN",
    "Answers the Top-N scope, a `TOPN_...`."),
  Method<&Context::SetTopN>("SetTopN", {{"TopNTypeInput"}},
    "Sets the Top-N scope, a `TOPN_...`."),
  Property<&Context::TableIndex>("TableIndex",
    "The number of the table being built with this context: 1 for the first, 0 before it."),
  Method<&Context::IncrementTableIndex>("IncrementTableIndex",
    "Counts the next table and answers its number. Fails with 6 after 32767 tables."),
  Method<&Context::GetSession>("GetSession",
    "Answers the page's session. Fails with 91 without a page."),
  Method<&Context::GetRequest>("GetRequest",
    "Answers the page's request. Fails with 91 without a page."),
  Method<&Context::ServerHTMLEncode>("ServerHTMLEncode", {{"szData"}},
    "Answers a text with & < > \" as character references. Fails with 91 without a page."),
  Method<&Context::ServerURLEncode>("ServerURLEncode", {{"szData"}},
    "Answers a text as a value of a query string. Fails with 91 without a page."),
  Property<&Context::szSortFieldParameterName>("szSortFieldParameterName",
    "The name of the parameter that a table sorts by: \"Sort\"."),
  Property<&Context::szSortOrderParameterName>("szSortOrderParameterName",
    "The name of the parameter of its order: \"SortOrder\"."),
  Method<&Context::TableURLParameter>("TableURLParameter",
    {{"szAmp"}, {"szSortParameterName"}, {"nSortCount"}, {"szSortString"}},
    "Answers one sort or paging parameter for all tables, with `szSortString` in the place of this one: "
    "\"&Sort=Name&Sort=\". `nSortCount` is how many values the request has."),
  Method<&Context::TableURL>("TableURL",
    {{"szSortFieldString"}, {"szSortOrderString"}, {"szFirstRowString"}, {"szPageSizeString"}},
    "Answers the page's own address with the state of this table replaced and all else of the query string "
    "kept. `szFirstRowString` counts from 1, `szPageSizeString` is rows."),
  Method<&Context::TableSortFieldInformation>("TableSortFieldInformation",
    "Answers this table's value of Sort as the request has it; \"\" for none."),
  Method<&Context::TableSortOrderInformation>("TableSortOrderInformation",
    "Answers this table's value of SortOrder as the request has it; \"\" for none."),
  Method<&Context::TableFirstRowInformation>("TableFirstRowInformation",
    "Answers this table's first row, counted from 1; 0 where the request has none. Fails with 6 outside of 16 "
    "bits."),
  Method<&Context::TablePageSizeInformation>("TablePageSizeInformation",
    "Answers this table's rows a page, -1 for all; 0 where the request has none. Fails with 6 outside of 16 "
    "bits."),
  Method<&Context::FailureMessage>("FailureMessage", {{"szDescription"}, {"bWriteErrDetails", false}},
    "Writes the failure paragraph, with the number and description of the pending error when "
    "`bWriteErrDetails` is true. Always answers false."),
  Method<&Context::Failure>("Failure", {{"szDescription"}},
    "Writes the failure paragraph of the pending error, where there is one, and answers whether there was."),
  Method<&Context::DebugOutput>("DebugOutput", {{"szDebugType"}, {"szMessage"}},
    "Writes a message and flushes, where the query string's Debug names its type."),
  Method<&Context::TableDebugOutput>("TableDebugOutput", {{"szMessage"}},
    "Writes a message and flushes, where tables are traced."),
  Method<&Context::bDebug>("bDebug", {{"szDebugType"}},
    "Answers whether the query string's Debug names a type, or All."),
  Property<&Context::bDebugTable>("bDebugTable",
    "Whether tables were traced when the page started."),
  Method<&Context::EncapsulateGotoContainerFailure>("EncapsulateGotoContainerFailure",
    {{"pLiveContainer"}, {"ServerName"}, {"MailboxName"}, {"ContainerName"}, {"OldThreshold"}, {"Flags"},
    {"szErrorString"}, {"bDefect7022Workaround", false}},
    "Goes to a folder and writes the paragraph of its failure. Answers true when it failed; raises nothing. "
    "`OldThreshold` is accepted and ignored; `bDefect7022Workaround` words a missing folder as such."),
  Method<&Context::EncapsulateGotoMsgAttachmentFailure>("EncapsulateGotoMsgAttachmentFailure",
    {{"pLiveContainer"}, {"szServerName"}, {"szMailboxName"}, {"szMessageId"}, {"bMailboxMessage"},
    {"szErrorString"}},
    "Goes to a message, unless it stands there already, and writes the paragraph of its refusal or failure. "
    "Answers true when it was refused or failed; raises nothing."),
  Method<&Context::KalvoAdministrator>("KalvoAdministrator",
    "Answers whether the session's KalvoAdministrator is exactly \"Yes\"."),
  Method<&Context::DrillDownPermission>("DrillDownPermission", {{"szServerName"}, {"szMailboxName"}},
    "Answers whether the visitor may open a mailbox: the session's KalvoDrillDownAuth is \"Yes\", or the "
    "logon name owns it. Raises nothing."),
  Method<&Context::KalvoCreatedMailboxName>("KalvoCreatedMailboxName", {{"szServerName"}},
    "Answers the name of the product's own mailbox on a server: \"Kalvo EXCH01\"."),
};
// clang-format on

}  // namespace

std::span<const Member> ContextMembers() { return kContext; }

}  // namespace kalvo::host
