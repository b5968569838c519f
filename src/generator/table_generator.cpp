#include "kalvo/table_generator.h"

#include "display/message_store.h"
#include "generator/folder_path.h"
#include "generator/message_deletion.h"
#include "generator/message_details.h"
#include "kalvo/column_database.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/owned.h"
#include "kalvo/platform/page_host.h"
#include "kalvo/table.h"
#include "kalvo/table_constants.h"
#include "kalvo/table_database.h"

namespace kalvo {

namespace {

// A member that is made when it is first needed, and kept.
template <typename T, typename... Arguments>
T& MadeOnce(std::shared_ptr<T>& member, const Arguments&... arguments) {
  if (!member) member = std::make_shared<T>(arguments...);
  return *member;
}

// Stands in for the response when no page is bound: every write fails, and a rendering skips it.
class NoResponse : public Response {
 public:
  void Write(std::string_view) override { throw ObjectNotSet(); }
  void Flush() override { throw ObjectNotSet(); }
};

}  // namespace

KalvoforExchangeTableGenerator::KalvoforExchangeTableGenerator(const Platform& platform) : platform_(platform) {}
KalvoforExchangeTableGenerator::~KalvoforExchangeTableGenerator() = default;

Context& KalvoforExchangeTableGenerator::PageContext() { return MadeOnce(context_); }
Display& KalvoforExchangeTableGenerator::PageDisplay() { return MadeOnce(display_, platform_.locale); }
KalvoTableDatabase& KalvoforExchangeTableGenerator::Tables() { return MadeOnce(tables_, platform_); }
KalvoColumnDatabase& KalvoforExchangeTableGenerator::Columns() { return MadeOnce(columns_); }

std::shared_ptr<Response> KalvoforExchangeTableGenerator::PageResponse() const { return Held(response_); }

void KalvoforExchangeTableGenerator::OnStartPage(ScriptingContext& ASPScriptingContext) {
  response_ = ASPScriptingContext.GetResponse();
  // Kept: the others are taken, too, although only the context and the display need them: a page's own scripting
  // context sees that it is asked.
  ASPScriptingContext.GetRequest();
  ASPScriptingContext.GetSession();
  ASPScriptingContext.GetServer();
  PageContext().OnStartPage(ASPScriptingContext);
  PageDisplay().OnStartPage(ASPScriptingContext);
}

void KalvoforExchangeTableGenerator::OnEndPage() {
  response_.reset();
  PageContext().OnEndPage();
  PageDisplay().OnEndPage();
}

void KalvoforExchangeTableGenerator::BuildTable(KalvoTableConstants tableId, std::string_view szName,
                                                std::string_view szOrganization, std::string_view szSite,
                                                std::string_view szMailbox, std::string_view szContainer,
                                                KalvoTableTopN TopNType, std::string_view szEmptyMessage,
                                                std::string_view szTableName) {
  Context& context = PageContext();
  context.SetName(szName);
  context.SetOrg(szOrganization);
  context.SetSite(szSite);
  context.SetMailbox(szMailbox);
  context.SetContainer(szContainer);
  context.SetTopN(TopNType);
  const std::shared_ptr<Table> table = Tables().GetTable(tableId);
  if (!table) {
    PageResponse()->Write("<p>The table requested is invalid.</p>");
    return;
  }
  const std::shared_ptr<Response> response = response_ ? response_ : std::make_shared<NoResponse>();
  table->BuildHTML(context, *response, PageDisplay(), Columns(), szEmptyMessage, szTableName);
}

bool KalvoforExchangeTableGenerator::DisplayFolderPath(std::string_view szServer, std::string& szMailbox,
                                                       std::string_view szContainer, std::string_view szFolderId,
                                                       KalvoTableConstants tableId) {
  const auto showCandidates = [&](std::string_view server, std::string_view pattern) {
    BuildTable(TABLE_AmbiguousAddressResolution, server, "", "", pattern);
  };
  return FolderPath(PageContext(), response_, platform_.locale, showCandidates)
      .Show(szServer, szMailbox, szContainer, szFolderId, tableId);
}

void KalvoforExchangeTableGenerator::DisplayMessageInformation(std::string_view szServerName,
                                                               std::string_view szMailboxName,
                                                               std::string_view szContainer,
                                                               std::string_view szMessageId, bool bMailboxMessage) {
  MessageDetails(PageContext(), PageDisplay(), response_, platform_.locale)
      .Show(szServerName, szMailboxName, szContainer, szMessageId,
            bMailboxMessage ? kMailboxStore : kPublicFolderStore);
}

bool KalvoforExchangeTableGenerator::CheckUserPermissions(std::string_view szServerName,
                                                          std::string_view szMailboxName) {
  return !szServerName.empty() && PageContext().MaySeeMailbox(szServerName, szMailboxName);
}

// Kept: a failure is told from a request without a public folder, for page scripts that compare the answer.
std::string KalvoforExchangeTableGenerator::PublicFolderDisplayPath() {
  return PublicFolderPath(PageContext()).value_or("-1");
}

bool KalvoforExchangeTableGenerator::DeleteMessage(std::string& szErrorString) {
  ClearError();
  szErrorString = "Unknown Error";
  return DeleteNamedMessage(PageContext(), szErrorString);
}

std::string KalvoforExchangeTableGenerator::GetTableSQL(KalvoTableConstants tableId) const {
  return std::string(TableConstants().TableSQL(tableId));
}

}  // namespace kalvo
