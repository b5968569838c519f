#include "kalvo/db_data_src.h"

#include "context/steps.h"
#include "datasrc/elapsed.h"
#include "datasrc/field_map.h"
#include "kalvo/context.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/database.h"
#include "kalvo/platform/owned.h"
#include "kalvo/platform/page_host.h"
#include "kalvo/platform/text_tools.h"
#include "kalvo/table.h"
#include "kalvo/table_constants.h"

namespace kalvo {

namespace {

// A pending error as a status: its low word, which is never 0.
std::int16_t Status() {
  const auto low = static_cast<std::int16_t>(static_cast<std::uint16_t>(CurrentError().number));
  return low == 0 ? std::int16_t{1} : low;
}

void TraceTime(Steps& steps, const Elapsed& elapsed, std::string_view step) {
  steps.Trace("Time", [&](std::string& out) { Append(out, elapsed.Report(step), kCrLf); });
}

// The rows of a record set, which stays as long as they are needed.
std::shared_ptr<const Rows> RowsOf(const std::shared_ptr<RecordSet>& recordSet) {
  return {recordSet, &recordSet->GetRows()};
}

// Where the page begins, as far as that can be known without anybody who sees it being asked.
std::int32_t FirstRow(const Context& context) {
  try {
    if (context.GetRequest()->SeesCalls()) return 1;
    const std::int16_t row = context.TableFirstRowInformation();
    return row == 0 ? 1 : row;
  } catch (const Error&) {
    return 1;  // the page begins at the first row then
  }
}

void TraceField(Steps& steps, std::int32_t number, std::string_view name, std::string_view value) {
  steps.Trace("Dictionary", [&](std::string& out) {
    Append(out, "<p>Get: Field ", number, ": ", name, "; Value: \"", value, "\"</p>", kCrLf);
  });
}

}  // namespace

KalvodbDataSrc::KalvodbDataSrc(const Platform& platform) : platform_(platform), fields_(std::make_unique<FieldMap>()) {}

KalvodbDataSrc::~KalvodbDataSrc() = default;

void KalvodbDataSrc::Forget() { fields_->Clear(); }

// ---- opening --------------------------------------------------------------------------------------------

std::string KalvodbDataSrc::BuildSQL() const {
  std::string field = Held(context_)->TableSortFieldInformation();
  if (field.empty()) field = table_->GetOrderBy();
  std::string order = Held(context_)->TableSortOrderInformation();
  if (order.empty()) order = table_->GetDefaultSortOrder();
  const std::string sort = Built([&](std::string& out) { Append(out, field, ' ', order); });
  Held(context_)->TraceTable([&](std::string& out) { Append(out, "<p>Sort Information: ", sort, "</p>", kCrLf); });

  std::string sql = table_->GetSQL();
  ReplaceAll(sql, "%SORT%", sort);
  ReplaceAll(sql, "%NAME%", SqlQuoted(resourceName_));
  ReplaceAll(sql, "%ORG%", SqlQuoted(context_->GetOrg()));
  ReplaceAll(sql, "%SITE%", SqlQuoted(context_->GetSite()));
  ReplaceAll(sql, "%MAILBOX%", SqlQuoted(context_->GetMailbox()));
  return sql;
}

std::int16_t KalvodbDataSrc::OpenDS() {
  Held(table_);
  Steps steps(context_);
  std::string sql;
  steps.Try([&] { sql = BuildSQL(); });
  if (!Connect(steps) || !Execute(steps, sql)) return Status();
  recordCount_ = 0;
  bool empty = false;
  steps.Try([&] { empty = Held(recordSet_)->IsEmpty(); });
  if (empty) return 0;
  if (const std::int16_t status = LoadRows(steps); status != 0) return status;
  recordCount_ = rows_->RowCount();
  steps.TraceTable([&](std::string& out) { Append(out, "<p>Record Count: ", recordCount_, "</p>", kCrLf); });
  return 0;
}

bool KalvodbDataSrc::Connect(Steps& steps) {
  return !steps.Fails("KalvodbDataSrc.OpenDS: conn.Open", [&] {
    auto connection = platform_.database.Connect(TableConstants().TABLES_DSN());
    // What the last connection gave does not outlive it.
    rows_ = nullptr;
    recordSet_ = nullptr;
    connection_ = std::move(connection);
  });
}

bool KalvodbDataSrc::Execute(Steps& steps, std::string_view sql) {
  steps.Trace("SQL", [&](std::string& out) {
    Append(out, "<p><strong>SQL Command:</strong> &nbsp;", kCrLf, kCrLf);
    Held(context_)->AppendServerHTMLEncode(out, sql);
    Append(out, kCrLf, kCrLf, "</p>", kCrLf);
  });
  const Elapsed elapsed(platform_);
  const bool failed = steps.Fails("KalvodbDataSrc.OpenDS", [&] {
    recordSet_ = connection_->Execute({sql, table_->GetSQL(), table_->GetOrderBy(), true, FirstRow(*Held(context_))});
  });
  if (failed) return false;
  TraceTime(steps, elapsed, "SQL Open");
  return true;
}

std::int16_t KalvodbDataSrc::LoadRows(Steps& steps) {
  const Elapsed elapsed(platform_);
  rows_ = nullptr;
  rowsAreLost_ = false;
  if (const std::int16_t status = LoadFieldNames(steps); status != 0) return status;
  if (steps.Fails("Get rows from record set.", [&] { rows_ = RowsOf(Held(recordSet_)); })) return Status();
  TraceTime(steps, elapsed, "Build dictionary and GetRows");
  std::int32_t loaded = 0;
  if (steps.Fails("Test GetRows result.", [&] { loaded = Held(rows_)->FieldCount(); })) {
    rows_ = nullptr;
    return Status();
  }
  if (loaded == fields_->Count()) return 0;
  rows_ = nullptr;
  steps.Refuse("Inconsistent GetRows dictionary.");
  return 1;
}

std::int16_t KalvodbDataSrc::LoadFieldNames(Steps& steps) {
  fields_->Clear();
  std::int32_t count = 0;
  steps.Try([&] { count = Held(recordSet_)->FieldCount(); });
  for (std::int32_t i = 0; i < count; ++i) {
    std::string name;
    if (steps.Fails("Get record set field name.", [&] { name = Held(recordSet_)->FieldName(i); })) return Status();
    if (steps.Fails("Save record set field name.", [&] { fields_->Add(name); })) return Status();
    steps.Trace("Dictionary", [&](std::string& out) { Append(out, "<p>Set: Field ", i, ": ", name, "</p>", kCrLf); });
  }
  return 0;
}

// ---- moving ---------------------------------------------------------------------------------------------

std::int16_t KalvodbDataSrc::MoveFirst() {
  rowIndex_ = 1;
  return 0;
}

std::int16_t KalvodbDataSrc::MoveNext() {
  rowIndex_ = NextRow();
  return 0;
}

std::int16_t KalvodbDataSrc::MoveTotals() {
  Steps steps(context_);
  if (steps.Fails("KalvodbDataSrc.MoveTotals", [&] { recordSet_ = Held(recordSet_)->NextRecordset(); })) {
    return Status();
  }
  bool empty = false;
  steps.Try([&] { empty = Held(recordSet_)->IsEmpty(); });
  if (empty) {
    steps.Refuse("Totals query not implemented for this table.");
    return 1;
  }
  rowIndex_ = 1;
  return LoadRows(steps);
}

// ---- reading --------------------------------------------------------------------------------------------

// A row that the database no longer gives is told of once; those behind it read "" as well.
bool KalvodbDataSrc::LoadRow(Steps& steps) {
  if (!rows_ || rowsAreLost_ || rowIndex_ < 1 || rowIndex_ > rows_->RowCount()) return false;
  if (steps.Try([&] { rows_->Fetch(rowIndex_ - 1); })) return true;
  rowsAreLost_ = true;
  steps.Try([&] { Held(context_)->Failure("Get rows from record set."); });
  return false;
}

std::optional<std::int32_t> KalvodbDataSrc::FieldNumber(Steps& steps, std::string_view szFieldName) const {
  const auto number = fields_->Find(szFieldName);
  if (!number) {
    steps.Refuse(Built([&](std::string& out) { Append(out, "GetField: Unknown field \"", szFieldName, '"'); }));
  }
  return number;
}

std::string_view KalvodbDataSrc::GetField(std::string_view szFieldName) {
  const auto context = Held(context_);
  Steps steps(context);
  const auto number = FieldNumber(steps, szFieldName);
  std::string text = TakeAnswer();
  if (number && LoadRow(steps)) {
    if (!steps.Try([&] { text = rows_->Text(*number, rowIndex_ - 1, text); })) text.clear();
  }
  TraceField(steps, number.value_or(0), szFieldName, text);
  return KeepAnswer(std::move(text));
}

std::optional<std::string_view> KalvodbDataSrc::GetIdentifier(std::string_view szFieldName) {
  const auto context = Held(context_);
  Steps steps(context);
  const auto number = FieldNumber(steps, szFieldName);
  std::string text = TakeAnswer();
  bool isNull = false;
  if (number && LoadRow(steps)) {
    const std::string step = Built([&](std::string& out) { Append(out, "KalvodbDataSrc.GetGUIField ", szFieldName); });
    steps.Fails(step, [&] {
      const auto bytes = rows_->Binary(*number, rowIndex_ - 1);
      isNull = !bytes;
      if (bytes) AppendHexadecimal(text, *bytes, HexLetters::Capital);
    });
  }
  TraceField(steps, number.value_or(0), szFieldName, text);
  if (isNull) return std::nullopt;
  return KeepAnswer(std::move(text));
}

std::optional<std::int32_t> KalvodbDataSrc::StoredField(std::string_view name) {
  if (!rows_ || !rows_->HasValues() || Held(context_)->bDebug("Dictionary")) return std::nullopt;
  return fields_->Find(name);
}

const StoredValue* KalvodbDataSrc::StoredRow() {
  Steps steps(context_);
  return LoadRow(steps) ? rows_->Values(rowIndex_ - 1) : nullptr;
}

Value KalvodbDataSrc::GetField(std::string_view szFieldName, bool bGUID) {
  if (!bGUID) return std::string(GetField(szFieldName));
  const auto identifier = GetIdentifier(szFieldName);
  if (!identifier) return Null{};
  return std::string(*identifier);
}

// ---- closing --------------------------------------------------------------------------------------------

std::int32_t KalvodbDataSrc::CloseDS() {
  Steps steps(context_);
  fields_->Clear();
  rows_ = nullptr;
  const bool failed = steps.Fails("KalvodbDataSrc.CloseDS: rs.Close", [&] { Held(recordSet_)->Close(); }) ||
                      steps.Fails("KalvodbDataSrc.CloseDS: conn.Close", [&] { connection_->Close(); });
  return failed ? CurrentError().number : 0;
}

}  // namespace kalvo
