#include "host/script/binding/classes/members.h"

#include "kalvo/context.h"
#include "kalvo/data_src.h"
#include "kalvo/db_data_src.h"
#include "kalvo/mapi_data_src.h"
#include "kalvo/table.h"
#include "kalvo/topn_data_src.h"

namespace kalvo::host {
namespace {

// The operation that has two forms, as scripts call it.
Value GetDbField(KalvodbDataSrc& source, std::string_view szFieldName, bool bGUID) {
  return source.GetField(szFieldName, bGUID);
}

// clang-format off
constexpr Member kDataSrc[] = {
  Method<&DataSrc::Initialize>("Initialize", {{"TableType"}, {"pTable"}, {"ResourceName"}, {"Ctxt"}},
    "Takes what the real row sources take. This class states the operations and has no rows."),
  Method<&DataSrc::OpenDS>("OpenDS",
    "Answers 0."),
  Method<&DataSrc::CloseDS>("CloseDS",
    "Answers 0."),
  Method<&DataSrc::MoveFirst>("MoveFirst",
    "Answers 0."),
  Method<&DataSrc::MoveNext>("MoveNext",
    "Answers 0."),
  Method<&DataSrc::GetField>("GetField", {{"szField"}},
    "Answers \"\"."),
  Method<&DataSrc::RecordCount>("RecordCount",
    "Answers 0."),
  Method<&DataSrc::GetRowIndex>("GetRowIndex",
    "Answers 0."),
};

constexpr Member kDbDataSrc[] = {
  Method<&KalvodbDataSrc::Initialize>("Initialize", {{"KalvoTable"}, {"ResourceName"}, {"Ctxt"}},
    "Binds the source to a table, the name that %NAME% means and a context."),
  Method<&KalvodbDataSrc::OpenDS>("OpenDS",
    "Completes the table's SQL and runs it. Answers 0, or the low 16 bits of the error's number after a "
    "failure that stands on the page."),
  Method<&KalvodbDataSrc::CloseDS>("CloseDS",
    "Closes the rows and answers 0."),
  Method<&KalvodbDataSrc::MoveFirst>("MoveFirst",
    "Makes the first row current and answers 0, or another status."),
  Method<&KalvodbDataSrc::MoveNext>("MoveNext",
    "Makes the next row current and answers 0, or another status; allowed past the last, where every field is "
    "\"\"."),
  Method<&KalvodbDataSrc::MoveTotals>("MoveTotals",
    "Runs the second statement of the SQL; its row is then the current one, under its own field names."),
  Method<&GetDbField>("GetField", {{"szFieldName"}, {"bGUID", false}},
    "Answers the text of a field of the current row, \"\" where it is null; with `bGUID` the digits of an "
    "identifier, null where it is null. An unknown name stands on the page."),
  Method<&KalvodbDataSrc::RecordCount>("RecordCount",
    "Answers how many rows there are, the totals not among them."),
  Method<&KalvodbDataSrc::GetRowIndex>("GetRowIndex",
    "Answers the number of the current row, from 1."),
};

constexpr Member kTopnDataSrc[] = {
  Property<&TopnDataSrc::gRecordCount, &TopnDataSrc::SetgRecordCount>("gRecordCount",
    "How many rows there are."),
  Property<&TopnDataSrc::gRowIndex, &TopnDataSrc::SetgRowIndex>("gRowIndex",
    "The number of the current row, from 1."),
  Method<&TopnDataSrc::Initialize>("Initialize", {{"KalvoTable"}, {"ResourceName"}, {"Ctxt"}},
    "Binds the source to a table, the name that %NAME% means and a context."),
  Method<&TopnDataSrc::OpenDS>("OpenDS",
    "Opens the rows and answers 0, or another status after a failure that stands on the page. Fails with 91 "
    "before `Initialize`."),
  Method<&TopnDataSrc::CloseDS>("CloseDS",
    "Closes the rows and answers 0."),
  Method<&TopnDataSrc::MoveFirst>("MoveFirst",
    "Makes the first row current and answers 0, or another status."),
  Method<&TopnDataSrc::MoveNext>("MoveNext",
    "Makes the next row current and answers 0, or another status; allowed past the last, where every field is "
    "\"\"."),
  Method<&TopnDataSrc::MoveTotals>("MoveTotals",
    "Makes the totals row current and answers 0, or another status."),
  Method<&TopnDataSrc::GetField>("GetField", {{"szFieldName"}},
    "Answers the text of a field of the current row; fields are named by their numbers, \"15\"."),
  Method<&TopnDataSrc::RecordCount>("RecordCount",
    "Answers how many rows there are, the totals not among them."),
  Method<&TopnDataSrc::GetRowIndex>("GetRowIndex",
    "Answers the number of the current row, from 1."),
};

constexpr Member kMapiDataSrc[] = {
  Method<&MapiDataSrc::Initialize>("Initialize", {{"KalvoTable"}, {"ResourceName"}, {"Ctxt"}},
    "Binds the source to a table, the name that %NAME% means and a context."),
  Method<&MapiDataSrc::OpenDS>("OpenDS",
    "Opens a message's attachments where the request has a MessageId, and a folder otherwise. Answers 0, or "
    "-1 after a failure that stands on the page."),
  Method<&MapiDataSrc::OpenFolderDS>("OpenFolderDS",
    "Opens the folders or messages of the scope's folder. Answers 0, or -1."),
  Method<&MapiDataSrc::OpenMessageDS>("OpenMessageDS",
    "Opens the attachments of the request's message. Answers 0, or -1."),
  Method<&MapiDataSrc::CloseDS>("CloseDS",
    "Closes the rows and answers 0."),
  Method<&MapiDataSrc::MoveFirst>("MoveFirst",
    "Makes the first row current and answers 0, or another status."),
  Method<&MapiDataSrc::MoveNext>("MoveNext",
    "Makes the next row current and answers 0, or another status; allowed past the last, where every field is "
    "\"\"."),
  Method<&MapiDataSrc::MoveTotals>("MoveTotals",
    "Makes the totals current: from here on every field is its sum."),
  Method<&MapiDataSrc::GetField>("GetField", {{"szFieldName"}},
    "Answers the text of a field of the current row; \"\" where it is null or unknown."),
  Method<&MapiDataSrc::RecordCount>("RecordCount",
    "Answers how many rows there are, the totals not among them."),
  Method<&MapiDataSrc::GetRowIndex>("GetRowIndex",
    "Answers the number of the current row, from 1."),
};
// clang-format on

}  // namespace

std::span<const Member> DataSrcMembers() { return kDataSrc; }
std::span<const Member> DbDataSrcMembers() { return kDbDataSrc; }
std::span<const Member> TopnDataSrcMembers() { return kTopnDataSrc; }
std::span<const Member> MapiDataSrcMembers() { return kMapiDataSrc; }

}  // namespace kalvo::host
