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
  Method<&DataSrc::Initialize>("Initialize", {{"TableType"}, {"pTable"}, {"ResourceName"}, {"Ctxt"}}),
  Method<&DataSrc::OpenDS>("OpenDS"),
  Method<&DataSrc::CloseDS>("CloseDS"),
  Method<&DataSrc::MoveFirst>("MoveFirst"),
  Method<&DataSrc::MoveNext>("MoveNext"),
  Method<&DataSrc::GetField>("GetField", {{"szField"}}),
  Method<&DataSrc::RecordCount>("RecordCount"),
  Method<&DataSrc::GetRowIndex>("GetRowIndex"),
};

constexpr Member kDbDataSrc[] = {
  Method<&KalvodbDataSrc::Initialize>("Initialize", {{"KalvoTable"}, {"ResourceName"}, {"Ctxt"}}),
  Method<&KalvodbDataSrc::OpenDS>("OpenDS"),
  Method<&KalvodbDataSrc::CloseDS>("CloseDS"),
  Method<&KalvodbDataSrc::MoveFirst>("MoveFirst"),
  Method<&KalvodbDataSrc::MoveNext>("MoveNext"),
  Method<&KalvodbDataSrc::MoveTotals>("MoveTotals"),
  Method<&GetDbField>("GetField", {{"szFieldName"}, {"bGUID", false}}),
  Method<&KalvodbDataSrc::RecordCount>("RecordCount"),
  Method<&KalvodbDataSrc::GetRowIndex>("GetRowIndex"),
};

constexpr Member kTopnDataSrc[] = {
  Property<&TopnDataSrc::gRecordCount, &TopnDataSrc::SetgRecordCount>("gRecordCount"),
  Property<&TopnDataSrc::gRowIndex, &TopnDataSrc::SetgRowIndex>("gRowIndex"),
  Method<&TopnDataSrc::Initialize>("Initialize", {{"KalvoTable"}, {"ResourceName"}, {"Ctxt"}}),
  Method<&TopnDataSrc::OpenDS>("OpenDS"),
  Method<&TopnDataSrc::CloseDS>("CloseDS"),
  Method<&TopnDataSrc::MoveFirst>("MoveFirst"),
  Method<&TopnDataSrc::MoveNext>("MoveNext"),
  Method<&TopnDataSrc::MoveTotals>("MoveTotals"),
  Method<&TopnDataSrc::GetField>("GetField", {{"szFieldName"}}),
  Method<&TopnDataSrc::RecordCount>("RecordCount"),
  Method<&TopnDataSrc::GetRowIndex>("GetRowIndex"),
};

constexpr Member kMapiDataSrc[] = {
  Method<&MapiDataSrc::Initialize>("Initialize", {{"KalvoTable"}, {"ResourceName"}, {"Ctxt"}}),
  Method<&MapiDataSrc::OpenDS>("OpenDS"),
  Method<&MapiDataSrc::OpenFolderDS>("OpenFolderDS"),
  Method<&MapiDataSrc::OpenMessageDS>("OpenMessageDS"),
  Method<&MapiDataSrc::CloseDS>("CloseDS"),
  Method<&MapiDataSrc::MoveFirst>("MoveFirst"),
  Method<&MapiDataSrc::MoveNext>("MoveNext"),
  Method<&MapiDataSrc::MoveTotals>("MoveTotals"),
  Method<&MapiDataSrc::GetField>("GetField", {{"szFieldName"}}),
  Method<&MapiDataSrc::RecordCount>("RecordCount"),
  Method<&MapiDataSrc::GetRowIndex>("GetRowIndex"),
};
// clang-format on

}  // namespace

std::span<const Member> DataSrcMembers() { return kDataSrc; }
std::span<const Member> DbDataSrcMembers() { return kDbDataSrc; }
std::span<const Member> TopnDataSrcMembers() { return kTopnDataSrc; }
std::span<const Member> MapiDataSrcMembers() { return kMapiDataSrc; }

}  // namespace kalvo::host
