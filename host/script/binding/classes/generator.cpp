#include "host/script/binding/classes/members.h"

#include "kalvo/table_generator.h"

namespace kalvo::host {
namespace {

using G = KalvoforExchangeTableGenerator;

// clang-format off
constexpr Member kGenerator[] = {
  Method<&G::OnStartPage>("OnStartPage", {{"ASPScriptingContext"}}),
  Method<&G::OnEndPage>("OnEndPage"),
  Method<&G::TearDown>("TearDown"),
  Method<&G::BuildTable>("BuildTable", {{"tableId"}, {"szName", ""}, {"szOrganization", ""}, {"szSite", ""},
    {"szMailbox", ""}, {"szContainer", ""}, {"TopNType", TOPN_UNDEFINED},
    {"szEmptyMessage", "There are no items in this report."}, {"szTableName", ""}}),
  Method<&G::GetTableSQL>("GetTableSQL", {{"tableId"}}),
  Method<&G::DisplayFolderPath>("DisplayFolderPath",
    {{"szServer"}, {"szMailbox"}, {"szContainer"}, {"szFolderId"}, {"tableId"}}),
  Method<&G::DisplayMessageInformation>("DisplayMessageInformation",
    {{"szServerName"}, {"szMailboxName"}, {"szContainer"}, {"szMessageId"}, {"bMailboxMessage"}}),
  Method<&G::CheckUserPermissions>("CheckUserPermissions", {{"szServerName"}, {"szMailboxName"}}),
  Method<&G::PublicFolderDisplayPath>("PublicFolderDisplayPath"),
  Method<&G::DeleteMessage>("DeleteMessage", {{"szErrorString"}}),
};
// clang-format on

}  // namespace

std::span<const Member> GeneratorMembers() { return kGenerator; }

}  // namespace kalvo::host
