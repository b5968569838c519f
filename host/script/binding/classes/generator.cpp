#include "host/script/binding/classes/members.h"

#include <utility>

#include "kalvo/table_generator.h"

namespace kalvo::host {
namespace {

using G = KalvoforExchangeTableGenerator;

// Runs an operation that writes to the page: without one it fails with 91, and not without a trace.
template <auto F>
struct OnPage;
template <typename R, typename... A, R (G::*F)(A...)>
struct OnPage<F> {
  static R Run(G& generator, A... arguments) {
    if (!generator.HasPage()) throw ExplainedError(ObjectNotSet(), "the object has no page: call OnStartPage first");
    return (generator.*F)(std::forward<A>(arguments)...);
  }
};

// clang-format off
constexpr Member kGenerator[] = {
  Method<&G::OnStartPage>("OnStartPage", {{"ASPScriptingContext"}},
    "Binds the object to the page: takes Response, Request, Session and Server from it. `Server.CreateObject` "
    "has done it; fails with 424 for what is no object."),
  Method<&G::OnEndPage>("OnEndPage",
    "Lets go of the page. The page host calls it when the page ends."),
  Method<&G::TearDown>("TearDown",
    "Does nothing and succeeds."),
  Method<&OnPage<&G::BuildTable>::Run>("BuildTable", {{"tableId"}, {"szName", ""}, {"szOrganization", ""}, {"szSite", ""},
    {"szMailbox", ""}, {"szContainer", ""}, {"TopNType", TOPN_UNDEFINED},
    {"szEmptyMessage", "There are no items in this report."}, {"szTableName", ""}},
    "Writes the table of an id (`TABLE_...`, 1 to 68) within a scope. Each scope parameter replaces that of "
    "the table before, so one left out empties it. Failures of the data stand on the page as a paragraph; "
    "fails with 9 for another id and with 91 without a page."),
  Method<&G::GetTableSQL>("GetTableSQL", {{"tableId"}},
    "Answers the fixed SQL of a task table; \"\" for every other id. Needs no page."),
  Method<&OnPage<&G::DisplayFolderPath>::Run>("DisplayFolderPath",
    {{"szServer"}, {"szMailbox"}, {"szContainer"}, {"szFolderId"}, {"tableId"}},
    "Writes where the visitor is: the mailbox and its folders, each a link. `szMailbox` may be a box and is "
    "then replaced by the address that it was found to mean. Answers true when the path was written or there "
    "is no mailbox; a visitor without the right to drill down reads so on the page. Fails with 91 without a "
    "page."),
  Method<&OnPage<&G::DisplayMessageInformation>::Run>("DisplayMessageInformation",
    {{"szServerName"}, {"szMailboxName"}, {"szContainer"}, {"szMessageId"}, {"bMailboxMessage"}},
    "Writes the details of a message, with the form that deletes it. Failures stand on the page; fails with "
    "91 without a page."),
  Method<&G::CheckUserPermissions>("CheckUserPermissions", {{"szServerName"}, {"szMailboxName"}},
    "Answers whether the visitor may see a mailbox: its owner and administrators may."),
  Method<&OnPage<&G::PublicFolderDisplayPath>::Run>("PublicFolderDisplayPath",
    "Answers the path of the public folder that the request names: \"\" when it names none, \"-1\" after a "
    "failure, which stands on the page. Fails with 91 without a page."),
  Method<&G::DeleteMessage>("DeleteMessage", {{"szErrorString"}},
    "Deletes the message that the posted delete form names, where the page has taken its token. Answers true "
    "when it did; a step that fails is raised, and `szErrorString`, a box, then names it."),
};
// clang-format on

}  // namespace

std::span<const Member> GeneratorMembers() { return kGenerator; }

}  // namespace kalvo::host
