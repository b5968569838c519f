#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "kalvo/enumerations.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/value.h"

namespace kalvo {

class LiveContainer;
class Request;
class Response;
class ScriptingContext;
class Server;
class Session;
class Trap;

// The request as the tables of one page see it: the scope of the table being built, the number of that table,
// the sort and paging state that the query string carries for each, and where failures and traces are written.
// One for a page, on one thread, made by the generator or by a page script; it works between `OnStartPage` and
// `OnEndPage`. Outside of that span an operation that needs the page host fails with 91.
class Context : public Object {
 public:
  Context();
  ~Context() override;

  // Takes Response, Request, Session and Server from the page host, in that order, and digests the query
  // string. The scope stays as it is; everything counted per page starts again. Fails with 6 when a sort or
  // paging parameter occurs more than 32767 times.
  void OnStartPage(ScriptingContext& ASPScriptingContext);

  // Releases the four host objects. Nothing else is reset.
  void OnEndPage();

  // ---- scope: set by the generator before each table ----------------------------------------------------

  const std::string& GetName() const { return name_; }
  void SetName(std::string_view Name) { name_ = Name; }
  const std::string& GetOrg() const { return org_; }
  void SetOrg(std::string_view Org) { org_ = Org; }
  const std::string& GetSite() const { return site_; }
  void SetSite(std::string_view Site) { site_ = Site; }
  const std::string& GetMailbox() const { return mailbox_; }
  void SetMailbox(std::string_view Mailbox) { mailbox_ = Mailbox; }
  const std::string& GetContainer() const { return container_; }
  void SetContainer(std::string_view Container) { container_ = Container; }
  KalvoTableTopN GetTopN() const { return topN_; }
  void SetTopN(KalvoTableTopN TopNTypeInput) { topN_ = TopNTypeInput; }

  // ---- the table being built ----------------------------------------------------------------------------

  // The number of the table being built on this page: 1 for the first, 0 before it.
  std::int16_t TableIndex() const;

  // Counts the next table and returns its number. Fails with 6 after 32767 tables.
  std::int16_t IncrementTableIndex();

  // ---- the page host ------------------------------------------------------------------------------------

  std::shared_ptr<Session> GetSession() const;
  std::shared_ptr<Request> GetRequest() const;
  std::string ServerHTMLEncode(std::string_view szData) const;
  std::string ServerURLEncode(std::string_view szData) const;
  void AppendServerHTMLEncode(std::string& out, std::string_view szData) const;

  std::string_view szSortFieldParameterName() const;
  std::string_view szSortOrderParameterName() const;

  // ---- sort and paging state of the table being built ---------------------------------------------------

  // The parameter for all tables up to this one, and for the later ones that the request has: `szSortString`
  // stands at this table's place. "&Sort=Name&Sort=&Sort=Date" for table 3 of a request with "Sort=Name".
  std::string TableURLParameter(std::string_view szAmp, std::string_view szSortParameterName, std::int16_t nSortCount,
                                std::string_view szSortString) const;

  // The page's own address with this table's state replaced and everything else of the query string kept.
  std::string TableURL(std::string_view szSortFieldString, std::string_view szSortOrderString,
                       std::string_view szFirstRowString, std::string_view szPageSizeString) const;
  void AppendTableURL(std::string& out, std::string_view szSortFieldString, std::string_view szSortOrderString,
                      std::string_view szFirstRowString, std::string_view szPageSizeString) const;

  // This table's value of "Sort" and "SortOrder" as the request has it; "" when it has none. Not checked.
  std::string TableSortFieldInformation() const;
  std::string TableSortOrderInformation() const;

  // This table's value of "First" and "PageSize"; 0 when there is none or it is no number. Halves round to
  // even; a number outside 16 bits fails with 6.
  std::int16_t TableFirstRowInformation() const;
  std::int16_t TablePageSizeInformation() const;

  // ---- failures and traces ------------------------------------------------------------------------------

  // Writes the failure paragraph; with the pending error's number and description when asked to, or when
  // table tracing is on. Always false.
  bool FailureMessage(std::string_view szDescription, bool bWriteErrDetails = false) const;

  // Reports the pending error, if there is one, with its details. True when it did. The error stays pending.
  bool Failure(std::string_view szDescription) const;

  // Writes and flushes the message when the request's "Debug" names the type, "ALL" or "TRUE", in any case.
  void DebugOutput(std::string_view szDebugType, std::string_view szMessage) const;
  void TableDebugOutput(std::string_view szMessage) const;
  bool bDebug(std::string_view szDebugType) const;

  // `bDebug("Table")` as it was when the page started.
  bool bDebugTable() const;

  // Calls `GotoContainer` and reports its failure: the upgrade message for 0x80004002, "No such Folder" for
  // 0xE1C1002F when asked for, the failure paragraph else. True when it failed. Never raises.
  bool EncapsulateGotoContainerFailure(LiveContainer& pLiveContainer, std::string_view ServerName,
                                       std::string_view MailboxName, std::string_view ContainerName,
                                       std::int32_t OldThreshold, std::int32_t Flags, std::string_view szErrorString,
                                       bool bDefect7022Workaround = false);

  // Calls `GotoMsgAttachment`, unless the page stands on that message already, and reports a refusal or a
  // failure. True when it was refused or failed, the skipped call's result otherwise. Never raises.
  bool EncapsulateGotoMsgAttachmentFailure(LiveContainer& pLiveContainer, std::string_view szServerName,
                                           std::string_view szMailboxName, std::string_view szMessageId,
                                           bool bMailboxMessage, std::string_view szErrorString);

  // ---- permissions --------------------------------------------------------------------------------------

  // Whether the session's "KalvoAdministrator" is exactly "Yes".
  bool KalvoAdministrator() const;

  // Whether the user may open this mailbox: the session's "KalvoDrillDownAuth" is "Yes", or the logon name
  // owns it. Administrators are not admitted here. Never raises; a missing browsing object is reported.
  bool DrillDownPermission(std::string_view szServerName, std::string_view szMailboxName) const;

  // Whether the user may see this mailbox: an administrator, or who owns it. Never raises; a missing browsing object is
  // reported.
  bool MaySeeMailbox(std::string_view server, std::string_view mailbox) const;

  // The mailbox that the product's agent makes on each server: "Kalvo EXCH01".
  std::string KalvoCreatedMailboxName(std::string_view szServerName) const;

  // ---- used by the library's other classes --------------------------------------------------------------

  // Whether one of the page's four objects sees how it is called, or is not there at all.
  bool SeesCalls() const;

  // Writes to the page. Whether the session lets the user open every mailbox.
  void Write(std::string_view text) const;
  bool MayDrillDown() const;

  // `DebugOutput` and `TableDebugOutput` of a message that is only made when it is shown: the maker appends it.
  template <std::invocable<std::string&> Maker>
  void Trace(std::string_view szDebugType, Maker&& maker) const {
    if (bDebug(szDebugType)) WriteTrace(Built(std::forward<Maker>(maker)));
  }
  template <std::invocable<std::string&> Maker>
  void TraceTable(Maker&& maker) const {
    if (bDebugTable()) WriteTrace(Built(std::forward<Maker>(maker)));
  }

  // The session's live mailbox browsing object. Fails with 424 when the session has none.
  std::shared_ptr<LiveContainer> LiveDriller() const;

  // Whether the logon name is the account that owns the mailbox; both are compared in lower case.
  struct Ownership {
    std::string user, owner;
    bool owns = false;
  };
  Ownership OwnsMailbox(Trap& trap, LiveContainer& live, std::string_view server, std::string_view mailbox) const;

 private:
  struct Parts;
  void WriteTrace(std::string_view message) const;

  std::string name_, org_, site_, mailbox_, container_;
  KalvoTableTopN topN_ = TOPN_UNDEFINED;
  std::unique_ptr<Parts> parts_;  // the page and what is kept of it
};

}  // namespace kalvo
