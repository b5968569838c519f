#include "kalvo/db_data_src.h"

#include "context/fails.h"
#include "datasrc/elapsed.h"
#include "datasrc/row_number.h"
#include "kalvo/context.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/database.h"
#include "kalvo/platform/owned.h"
#include "kalvo/table.h"
#include "kalvo/table_constants.h"

namespace kalvo {

namespace {

// A pending error as a status: its low word, which is never 0.
std::int16_t Status() {
  const auto low = static_cast<std::int16_t>(static_cast<std::uint16_t>(CurrentError().number));
  return low == 0 ? std::int16_t{1} : low;
}

void ReplaceAll(std::string& text, std::string_view token, std::string_view replacement) {
  for (std::size_t at = text.find(token); at != std::string::npos; at = text.find(token, at + replacement.size())) {
    text.replace(at, token.size(), replacement);
  }
}

std::string QuoteSQLString(std::string_view value) {
  return Built([&](std::string& out) {
    out += '\'';
    for (const char c : value) {
      if (c == '\'') out += '\'';
      out += c;
    }
    out += '\'';
  });
}

void TraceTime(Trap& trap, const Context& context, const Elapsed& elapsed, std::string_view step) {
  trap([&] { context.Trace("Time", [&](std::string& out) { Append(out, elapsed.Report(step), kCrLf); }); });
}

// The rows of a record set, which stays as long as they are needed.
std::shared_ptr<const Rows> RowsOf(const std::shared_ptr<RecordSet>& recordSet) {
  return {recordSet, &recordSet->GetRows()};
}

void AppendHexadecimal(std::string& out, std::span<const std::uint8_t> bytes) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  for (const std::uint8_t byte : bytes) Append(out, kDigits[byte >> 4], kDigits[byte & 15]);
}

}  // namespace

KalvodbDataSrc::KalvodbDataSrc(const Platform& platform) : platform_(platform) {}
KalvodbDataSrc::~KalvodbDataSrc() = default;

void KalvodbDataSrc::Initialize(Table& KalvoTable, std::string_view ResourceName, Context& Ctxt) {
  table_ = Owned(KalvoTable);
  resourceName_ = ResourceName;
  context_ = Owned(Ctxt);
  fields_.Clear();
}

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
  ReplaceAll(sql, "%NAME%", QuoteSQLString(resourceName_));
  ReplaceAll(sql, "%ORG%", QuoteSQLString(context_->GetOrg()));
  ReplaceAll(sql, "%SITE%", QuoteSQLString(context_->GetSite()));
  ReplaceAll(sql, "%MAILBOX%", QuoteSQLString(context_->GetMailbox()));
  return sql;
}

std::int16_t KalvodbDataSrc::OpenDS() {
  if (!table_) throw ObjectNotSet();
  Trap trap;
  std::string sql;
  trap([&] { sql = BuildSQL(); });
  if (Fails(trap, *Held(context_), "KalvodbDataSrc.OpenDS: conn.Open",
            [&] { Reconnect(platform_.database.Connect(TableConstants().TABLES_DSN())); })) {
    return Status();
  }
  trap([&] {
    Held(context_)->Trace("SQL", [&](std::string& out) {
      Append(out, "<p><strong>SQL Command:</strong> &nbsp;", kCrLf, kCrLf);
      Held(context_)->AppendServerHTMLEncode(out, sql);
      Append(out, kCrLf, kCrLf, "</p>", kCrLf);
    });
  });
  const Elapsed elapsed(platform_);
  if (Fails(trap, *Held(context_), "KalvodbDataSrc.OpenDS", [&] {
        recordSet_ = connection_->Execute({sql, table_->GetSQL(), table_->GetOrderBy()});
      })) {
    return Status();
  }
  TraceTime(trap, *Held(context_), elapsed, "SQL Open");

  bool empty = false;
  trap([&] { empty = Held(recordSet_)->IsEmpty(); });
  recordCount_ = 0;
  if (empty) return 0;
  const std::int16_t status = LoadRows(trap);
  if (status != 0) return status;
  recordCount_ = rows_->RowCount();
  trap([&] {
    Held(context_)->TraceTable(
        [&](std::string& out) { Append(out, "<p>Record Count: ", recordCount_, "</p>", kCrLf); });
  });
  return 0;
}

// What the last connection gave does not outlive it.
void KalvodbDataSrc::Reconnect(std::unique_ptr<Connection> connection) {
  rows_ = nullptr;
  recordSet_ = nullptr;
  connection_ = std::move(connection);
}

std::int16_t KalvodbDataSrc::LoadRows(Trap& trap) {
  const Elapsed elapsed(platform_);
  rows_ = nullptr;
  if (const std::int16_t status = LoadFieldNames(trap); status != 0) return status;
  if (Fails(trap, *Held(context_), "Get rows from record set.", [&] { rows_ = RowsOf(Held(recordSet_)); })) {
    return Status();
  }
  TraceTime(trap, *Held(context_), elapsed, "Build dictionary and GetRows");
  std::int32_t loaded = 0;
  if (Fails(trap, *Held(context_), "Test GetRows result.", [&] { loaded = Held(rows_)->FieldCount(); })) {
    rows_ = nullptr;
    return Status();
  }
  if (loaded == fields_.Count()) return 0;
  rows_ = nullptr;
  trap([&] { Held(context_)->FailureMessage("Inconsistent GetRows dictionary.", false); });
  return 1;
}

std::int16_t KalvodbDataSrc::LoadFieldNames(Trap& trap) {
  fields_.Clear();
  std::int32_t count = 0;
  trap([&] { count = Held(recordSet_)->FieldCount(); });
  for (std::int32_t i = 0; i < count; ++i) {
    std::string name;
    if (Fails(trap, *Held(context_), "Get record set field name.", [&] { name = Held(recordSet_)->FieldName(i); })) {
      return Status();
    }
    if (Fails(trap, *Held(context_), "Save record set field name.", [&] { fields_.Add(name); })) return Status();
    trap([&] {
      Held(context_)->Trace("Dictionary",
                            [&](std::string& out) { Append(out, "<p>Set: Field ", i, ": ", name, "</p>", kCrLf); });
    });
  }
  return 0;
}

// ---- moving ---------------------------------------------------------------------------------------------

std::int16_t KalvodbDataSrc::MoveFirst() {
  rowIndex_ = 1;
  return 0;
}

std::int16_t KalvodbDataSrc::MoveNext() {
  rowIndex_ = NextRow(rowIndex_);
  return 0;
}

std::int16_t KalvodbDataSrc::MoveTotals() {
  Trap trap;
  if (Fails(trap, *Held(context_), "KalvodbDataSrc.MoveTotals",
            [&] { recordSet_ = Held(recordSet_)->NextRecordset(); })) {
    return Status();
  }
  bool empty = false;
  trap([&] { empty = Held(recordSet_)->IsEmpty(); });
  if (empty) {
    trap([&] { Held(context_)->FailureMessage("Totals query not implemented for this table.", false); });
    return 1;
  }
  rowIndex_ = 1;
  return LoadRows(trap);
}

std::int16_t KalvodbDataSrc::GetRowIndex() { return ToInt16(static_cast<double>(rowIndex_)); }

// ---- reading --------------------------------------------------------------------------------------------

bool KalvodbDataSrc::RowIsLoaded() const { return rows_ && rowIndex_ >= 1 && rowIndex_ <= rows_->RowCount(); }

std::optional<std::int32_t> KalvodbDataSrc::FieldNumber(Trap& trap, std::string_view szFieldName) const {
  const auto field = fields_.Find(szFieldName);
  if (field) return field;
  trap([&] {
    Held(context_)->FailureMessage(
        Built([&](std::string& out) { Append(out, "GetField: Unknown field \"", szFieldName, '"'); }), false);
  });
  return std::nullopt;
}

std::string_view KalvodbDataSrc::GetField(std::string_view szFieldName) {
  const auto context = Held(context_);
  Trap trap;
  const auto field = FieldNumber(trap, szFieldName);
  std::string text = answer_.Take();
  if (field && RowIsLoaded()) {
    if (!trap([&] { text = rows_->Text(*field, rowIndex_ - 1, text); })) text.clear();
  }
  TraceField(trap, *context, field.value_or(0), szFieldName, text);
  return answer_.Keep(std::move(text));
}

std::optional<std::string_view> KalvodbDataSrc::GetIdentifier(std::string_view szFieldName) {
  const auto context = Held(context_);
  Trap trap;
  const auto field = FieldNumber(trap, szFieldName);
  std::string text = answer_.Take();
  bool isNull = false;
  if (field && RowIsLoaded()) {
    const std::string step = Built([&](std::string& out) { Append(out, "KalvodbDataSrc.GetGUIField ", szFieldName); });
    Fails(trap, *context, step, [&] {
      const auto bytes = rows_->Binary(*field, rowIndex_ - 1);
      isNull = !bytes;
      if (bytes) AppendHexadecimal(text, *bytes);
    });
  }
  TraceField(trap, *context, field.value_or(0), szFieldName, text);
  if (isNull) return std::nullopt;
  return answer_.Keep(std::move(text));
}

Value KalvodbDataSrc::GetField(std::string_view szFieldName, bool bGUID) {
  if (!bGUID) return std::string(GetField(szFieldName));
  const auto identifier = GetIdentifier(szFieldName);
  if (!identifier) return Null{};
  return std::string(*identifier);
}

void KalvodbDataSrc::TraceField(Trap& trap, const Context& context, std::int32_t field, std::string_view name,
                                std::string_view value) {
  trap([&] {
    context.Trace("Dictionary", [&](std::string& out) {
      Append(out, "<p>Get: Field ", field, ": ", name, "; Value: \"", value, "\"</p>", kCrLf);
    });
  });
}

// ---- closing --------------------------------------------------------------------------------------------

std::int32_t KalvodbDataSrc::CloseDS() {
  Trap trap;
  fields_.Clear();
  rows_ = nullptr;
  if (Fails(trap, *Held(context_), "KalvodbDataSrc.CloseDS: rs.Close", [&] { Held(recordSet_)->Close(); })) {
    return CurrentError().number;
  }
  if (Fails(trap, *Held(context_), "KalvodbDataSrc.CloseDS: conn.Close", [&] { connection_->Close(); })) {
    return CurrentError().number;
  }
  return 0;
}

}  // namespace kalvo
