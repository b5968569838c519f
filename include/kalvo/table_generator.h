#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "kalvo/enumerations.h"
#include "kalvo/platform/platform.h"
#include "kalvo/platform/value.h"

namespace kalvo {

class Context;
class Display;
class KalvoColumnDatabase;
class KalvoTableDatabase;
class Response;
class ScriptingContext;

// What a console page makes to put a report on the page. It keeps the page's context, its display and the two
// catalogues, each made when it is first needed, and drops them when it is dropped itself.
//
//   var generator = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator");
//   generator.BuildTable(TABLE_CURRENTALERTS);
class KalvoforExchangeTableGenerator : public Object {
 public:
  explicit KalvoforExchangeTableGenerator(const Platform& platform);
  ~KalvoforExchangeTableGenerator() override;

  void OnStartPage(ScriptingContext& ASPScriptingContext);
  void OnEndPage();

  // Whether a page was started and has not ended: without one nothing that is built can be seen.
  bool HasPage() const { return static_cast<bool>(response_); }

  // Does nothing and succeeds.
  void TearDown() {}

  // Writes the table of an id to the page, within a scope. Every scope value replaces the one of the table
  // before. Fails with 9 for an id outside of 1 to 68; ids 1 and 68 have no table and say so on the page.
  void BuildTable(KalvoTableConstants tableId, std::string_view szName = "", std::string_view szOrganization = "",
                  std::string_view szSite = "", std::string_view szMailbox = "", std::string_view szContainer = "",
                  KalvoTableTopN TopNType = TOPN_UNDEFINED,
                  std::string_view szEmptyMessage = "There are no items in this report.",
                  std::string_view szTableName = "");

  // The fixed SQL of a task table; "" for every other.
  std::string GetTableSQL(KalvoTableConstants tableId) const;

  // Writes where the user is: the mailbox and the folder path, each step a link. `szMailbox` is replaced by the
  // address that it was found to mean. True when the path was written, or when there is no mailbox.
  bool DisplayFolderPath(std::string_view szServer, std::string& szMailbox, std::string_view szContainer,
                         std::string_view szFolderId, KalvoTableConstants tableId);

  // Writes the details of a message with the form that deletes it.
  void DisplayMessageInformation(std::string_view szServerName, std::string_view szMailboxName,
                                 std::string_view szContainer, std::string_view szMessageId, bool bMailboxMessage);

  // Whether the user may see the mailbox: its owner or an administrator.
  bool CheckUserPermissions(std::string_view szServerName, std::string_view szMailboxName);

  // The path of the public folder that the request names: "" when it names none, "-1" after a failure.
  std::string PublicFolderDisplayPath();

  // Deletes the message that the delete form names. A failing step is raised; `szErrorString` then names it.
  bool DeleteMessage(std::string& szErrorString);

 private:
  Context& PageContext();
  Display& PageDisplay();
  KalvoTableDatabase& Tables();
  KalvoColumnDatabase& Columns();
  std::shared_ptr<Response> PageResponse() const;

  const Platform& platform_;
  std::shared_ptr<Context> context_;
  std::shared_ptr<Display> display_;
  std::shared_ptr<KalvoTableDatabase> tables_;
  std::shared_ptr<KalvoColumnDatabase> columns_;
  std::shared_ptr<Response> response_;
};

}  // namespace kalvo
