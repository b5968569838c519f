#include "host/script/page/classes.h"

#include "kalvo/enumerations.h"
#include "script/page_runner.h"

namespace kalvo::test {
namespace {

using namespace host;

// Every class with its members as they are published: parameters by name, with their defaults.
struct PublishedClass {
  const char* name;
  std::vector<const char*> members;
};

// clang-format off
const PublishedClass kPublished[] = {
  {"KalvoforExchangeTableGenerator", {
    "OnStartPage(ASPScriptingContext)", "OnEndPage()", "TearDown()",
    "BuildTable(tableId, szName = \"\", szOrganization = \"\", szSite = \"\", szMailbox = \"\", szContainer = \"\", "
      "TopNType = 0, szEmptyMessage = \"There are no items in this report.\", szTableName = \"\")",
    "GetTableSQL(tableId)", "DisplayFolderPath(szServer, szMailbox, szContainer, szFolderId, tableId)",
    "DisplayMessageInformation(szServerName, szMailboxName, szContainer, szMessageId, bMailboxMessage)",
    "CheckUserPermissions(szServerName, szMailboxName)", "PublicFolderDisplayPath()", "DeleteMessage(szErrorString)"}},
  {"Table", {
    "Initialize(TableType, Id, Name, TotalsStateInput, ShowCharts, ShowLastScan, IsForm, ShowEntries, Columns, SQL, "
      "OrderBy, DefaultSortOrder)",
    "SetTopNParameters(pCtxt)", "GetDataSrc(pCtxt)",
    "BuildHTML(pCtxt, Response, pDisplay, pColDB, szEmptyMessage, szTableName)", "GetId()", "GetColumns()", "GetSQL()",
    "GetDefaultSortOrder()", "GetOrderBy()", "GetTopNObject()", "GetTopNLoadType()"}},
  {"KalvoTableDatabase", {
    "ValidTable(tableId)", "IsTableNull(nTableId)", "GetTable(tableId)", "InitializeGeneralTables()",
    "InitializeTaskTables()", "InitializeResourceTables()", "InitializeConfigurationTables()",
    "InitializeTopNTables()", "InitializeMAPITables()"}},
  {"TableConstants", {"TABLES_DSN", "gszAscendingSort", "gszDescendingSort", "TableSQL(tableId)"}},
  {"Context", {
    "OnStartPage(ASPScriptingContext)", "OnEndPage()", "GetName()", "SetName(Name)", "GetOrg()", "SetOrg(Org)",
    "GetSite()", "SetSite(Site)", "GetMailbox()", "SetMailbox(Mailbox)", "GetContainer()", "SetContainer(Container)",
    "GetTopN()", "SetTopN(TopNTypeInput)", "TableIndex", "IncrementTableIndex()", "GetSession()", "GetRequest()",
    "ServerHTMLEncode(szData)", "ServerURLEncode(szData)", "szSortFieldParameterName", "szSortOrderParameterName",
    "TableURLParameter(szAmp, szSortParameterName, nSortCount, szSortString)",
    "TableURL(szSortFieldString, szSortOrderString, szFirstRowString, szPageSizeString)",
    "TableSortFieldInformation()", "TableSortOrderInformation()", "TableFirstRowInformation()",
    "TablePageSizeInformation()", "FailureMessage(szDescription, bWriteErrDetails = false)", "Failure(szDescription)",
    "DebugOutput(szDebugType, szMessage)", "TableDebugOutput(szMessage)", "bDebug(szDebugType)", "bDebugTable",
    "EncapsulateGotoContainerFailure(pLiveContainer, ServerName, MailboxName, ContainerName, OldThreshold, Flags, "
      "szErrorString, bDefect7022Workaround = false)",
    "EncapsulateGotoMsgAttachmentFailure(pLiveContainer, szServerName, szMailboxName, szMessageId, bMailboxMessage, "
      "szErrorString)",
    "KalvoAdministrator()", "DrillDownPermission(szServerName, szMailboxName)",
    "KalvoCreatedMailboxName(szServerName)"}},
  {"Display", {
    "MessageGraphicID*", "FolderGraphicID*", "AttachmentGraphicID*", "NoAttachmentGraphicID*",
    "OnStartPage(ASPScriptingContext)", "OnEndPage()", "DetailTableStart(szBookmark)", "DetailTableEnd()",
    "AddInputField(szInputField, szValue)", "AddInputFieldIfNotNull(szInputField, szValue)",
    "MultipleRowData(szValue, bHeader, nRows, nColumns, szAlign, szVAlign, bNoWrap, szColor)", "SimpleRowData(szValue)",
    "EmptyRowData()", "TableRowStart()", "TableRowEnd()",
    "TableHeaderCell(szHeaderText, szUpSortLink, szDownSortLink, szLineLink, szHistoryLink)",
    "GraphicInput(GraphicID, szAlt)", "FormInputTypeName(szType, szName)",
    "AnchorStart(szLink, szBookmark = \"\", szTarget = \"\")", "AnchorEnd()",
    "Anchor(szLink, szBookmark, szTarget, szContent)", "FormCheckboxInput(szName, szValue, bChecked, szOnClick, bEdit)",
    "DeleteMessageForm(szServerName, szMailboxName, szFolderId, szMessageId, Flags, szContinueUrl)",
    "Kalvo_FormatNumber(nNumber, bDecimal)", "Kalvo_FormatNumericValue(nNumber, nScale, szUnits, szDefault)",
    "Kalvo_FormatDateTime(nDate, szDefault)", "Kalvo_FormatDateTimeFloat(nDate)", "TrimTabsAndSpaces(szInput)",
    "AddParamToURL(pURL, szName, szValue)"}},
  {"KalvoColumn", {
    "Initialize(Id, Name, DatabaseField, HyperLinkType, PieChartLink, LineGraphLink, inTotalState, SortColumn, "
      "FormatType, DataScale, Units, Rows, Columns, Align, NoWrap, DefaultValue)",
    "ConstructHTMLHeader(pCtxt, pDisplay)", "ConstructHTMLData(pCtxt, pDisplay, pTableData)",
    "ConstructHTMLTotal(pCtxt, pDisplay, pTableData, bFirstCell)"}},
  {"KalvoControlColumn", {
    "Initialize(Id, Name, Value, ValueDBField, Checked, OnClick, Edit, FormatType)",
    "ConstructHTMLHeader(pCtxt, pDisplay)", "ConstructHTMLData(pCtxt, pDisplay, pTableData)"}},
  {"KalvoColumnDatabase", {
    "GetColumn(nColumnId)", "Initialize_RMC_Alert()", "Initialize_EXDB_Server()", "Initialize_EXDB_ServerTotals()",
    "Initialize_EXDB_ServerBackup()", "Initialize_EXDB_Group()", "Initialize_EXDB_MailboxGroup()",
    "Initialize_EXDB_MailboxGroupTotals()", "Initialize_EXDB_QuotaViolation()", "Initialize_EXDB_DbFile()",
    "Initialize_EXDB_DbFileHistory()", "Initialize_EXDB_DbFileSystem()", "Initialize_EXDB_Mailbox()",
    "Initialize_TOPN_Columns()", "Initialize_MAPI_Columns()", "Initialize_Task_Columns()"}},
  {"DataSrc", {
    "Initialize(TableType, pTable, ResourceName, Ctxt)", "OpenDS()", "CloseDS()", "MoveFirst()", "MoveNext()",
    "GetField(szField)", "RecordCount()", "GetRowIndex()"}},
  {"KalvodbDataSrc", {
    "Initialize(KalvoTable, ResourceName, Ctxt)", "OpenDS()", "CloseDS()", "MoveFirst()", "MoveNext()", "MoveTotals()",
    "GetField(szFieldName, bGUID = false)", "RecordCount()", "GetRowIndex()"}},
  {"TopnDataSrc", {
    "gRecordCount*", "gRowIndex*", "Initialize(KalvoTable, ResourceName, Ctxt)", "OpenDS()", "CloseDS()", "MoveFirst()",
    "MoveNext()", "MoveTotals()", "GetField(szFieldName)", "RecordCount()", "GetRowIndex()"}},
  {"MapiDataSrc", {
    "Initialize(KalvoTable, ResourceName, Ctxt)", "OpenDS()", "OpenFolderDS()", "OpenMessageDS()", "CloseDS()",
    "MoveFirst()", "MoveNext()", "MoveTotals()", "GetField(szFieldName)", "RecordCount()", "GetRowIndex()"}},
};
// clang-format on

TEST(PublishedClasses, AreBoundWithTheirMembersInOrder) {
  std::size_t i = 0;
  for (const ClassBinding& binding : Classes()) {
    if (binding.make == nullptr) continue;
    ASSERT_LT(i, std::size(kPublished));
    const PublishedClass& published = kPublished[i++];
    EXPECT_EQ(binding.name, published.name);
    std::vector<std::string> members;
    for (const Member& member : binding.members()) members.push_back(Signature(member));
    EXPECT_EQ(members, std::vector<std::string>(published.members.begin(), published.members.end()));
  }
  EXPECT_EQ(i, std::size(kPublished));
}

class PublishedPages : public PageTest {};

TEST_F(PublishedPages, MakeEveryClassBothWaysInAnyCase) {
  for (const PublishedClass& published : kPublished) {
    const std::string name = std::string("KalvoTables.") + published.name;
    EXPECT_EQ(Script("Response.Write(typeof new ActiveXObject('" + name + "') + typeof Server.CreateObject('" +
                     ToUpper(name) + "'));"),
              "objectobject")
        << name;
  }
}

TEST_F(PublishedPages, OfferEveryMemberUnderItsName) {
  for (const ClassBinding& binding : Classes()) {
    if (binding.make == nullptr) continue;
    for (const Member& member : binding.members()) {
      const std::string code = "var o = Server.CreateObject('KalvoTables." + std::string(binding.name) + "');" +
                               "Response.Write(('" + std::string(member.name) + "' in o) + typeof o." +
                               std::string(member.name) + ");";
      const std::string written = Script(code);
      EXPECT_EQ(written == "truefunction", member.kind == MemberKind::Method) << code << written;
      EXPECT_EQ(written.substr(0, 4), "true") << code;
    }
  }
}

TEST_F(PublishedPages, KnowEveryConstant) {
  struct Constant {
    const char* name;
    std::int32_t value;
  };
#define KALVO_CONSTANT(name, value) {#name, name},
  const Constant kConstants[] = {KALVO_ALL_ENUMERATIONS(KALVO_CONSTANT)};
#undef KALVO_CONSTANT
  EXPECT_GT(std::size(kConstants), 250U);
  std::string code, expected;
  for (const Constant& constant : kConstants) {
    code += std::string("Response.Write(") + constant.name + " + ' ');";
    expected += std::to_string(constant.value) + " ";
  }
  EXPECT_EQ(Script(code), expected);
}

TEST(Signatures, ListWhatADocumentMustName) {
  std::size_t members = 0;
  for (const ClassBinding& binding : Classes()) {
    for (const Member& member : binding.members()) {
      EXPECT_FALSE(Signature(member).empty());
      ++members;
    }
  }
  EXPECT_GT(members, 200U);
}

}  // namespace
}  // namespace kalvo::test
