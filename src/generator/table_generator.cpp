#include "kalvo/table_generator.h"

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
  request_ = ASPScriptingContext.GetRequest();
  session_ = ASPScriptingContext.GetSession();
  server_ = ASPScriptingContext.GetServer();
  PageContext().OnStartPage(ASPScriptingContext);
  PageDisplay().OnStartPage(ASPScriptingContext);
}

void KalvoforExchangeTableGenerator::OnEndPage() {
  response_.reset();
  request_.reset();
  session_.reset();
  server_.reset();
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

std::string KalvoforExchangeTableGenerator::GetTableSQL(KalvoTableConstants tableId) const {
  return std::string(TableConstants().TableSQL(tableId));
}

}  // namespace kalvo
