#include "adapters/ranking/loader.h"

#include <charconv>
#include <string>

#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/table_constants.h"

namespace kalvo::ranking {
namespace {

std::int64_t Integer(std::string_view text) {
  std::int64_t number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  if (read.ec != std::errc() || read.ptr != text.data() + text.size()) throw TypeMismatch();
  return number;
}

// The serial of a date that the database wrote as text.
double Serial(std::string_view text, const Locale& locale) {
  const auto date = ParseDate(text, locale);
  if (!date) throw TypeMismatch();
  return date->serial;
}

// The value of a field; empty where the database has none.
Value Typed(std::string_view text, FieldType type, const Locale& locale) {
  if (text.empty()) return Empty{};
  switch (type) {
    case FieldType::Integer: return Integer(text);
    case FieldType::DateSerial: return Serial(text, locale);
    case FieldType::Text: break;
  }
  return std::string(text);
}

void SetAverage(ResultSet& results, const Value& messages, const Value& space) {
  const auto* count = std::get_if<std::int64_t>(&messages);
  const auto* bytes = std::get_if<std::int64_t>(&space);
  if (count && bytes && *count > 0) results.Set(kAverageSize, *bytes / *count);
}

void SetAmount(ResultSet& results, const Kind& kind, const Value& amount) {
  switch (kind.amount) {
    case Amount::AsTheItemHas: break;
    case Amount::OldMessages: results.Set(kMessages, amount); break;
    case Amount::OldSpace: results.Set(kSpace, amount); break;
  }
}

}  // namespace

void RankingReader::Read(std::int16_t kindNumber, Scope scope, std::string_view name, RankedResults& results) const {
  auto* const rows = dynamic_cast<ResultSet*>(&results);
  if (!rows) throw TypeMismatch();
  rows->Clear();
  const Kind& kind = FindKind(kindNumber);
  if (scope == Scope::MailboxGroup && !IsOfMailboxes(kind.subject)) return;
  const Statement statement = MakeStatement(kind, scope, name, settings_);
  const auto connection = database_.Connect(TableConstants().TABLES_DSN());
  const auto records = connection->Execute({statement.sql, statement.pattern, ""});
  if (records->IsEmpty()) return;
  try {
    Fill(*rows, kind, records->GetRows());
  } catch (const Error&) {
    rows->Clear();
    throw;
  }
}

void RankingReader::Fill(ResultSet& results, const Kind& kind, const Rows& rows) const {
  std::string scratch;
  for (std::int32_t row = 0; row < rows.RowCount(); ++row) {
    results.AddRow();
    Value messages, space;
    std::int32_t column = 1;  // behind the amount
    for (const FieldSource& source : FieldsOf(kind.subject)) {
      Value value = Typed(rows.Text(column++, row, scratch), source.type, settings_.locale);
      if (source.field == kMessages) messages = value;
      if (source.field == kSpace) space = value;
      results.Set(source.field, std::move(value));
    }
    SetAverage(results, messages, space);
    SetAmount(results, kind, Typed(rows.Text(0, row, scratch), FieldType::Integer, settings_.locale));
  }
}

void ServerLoader::Load(std::int16_t kind, std::string_view name, RankedResults& results) {
  reader_.Read(kind, Scope::Server, name, results);
}

void ServerLoader::LoadGroup(std::int16_t kind, std::string_view group, RankedResults& results) {
  reader_.Read(kind, Scope::ServerGroup, group, results);
}

void ServerLoader::LoadSite(std::int16_t kind, std::string_view site, RankedResults& results) {
  reader_.Read(kind, Scope::Site, site, results);
}

void ServerLoader::LoadOrg(std::int16_t kind, std::string_view organization, RankedResults& results) {
  reader_.Read(kind, Scope::Organization, organization, results);
}

void MailboxGroupLoader::Load(std::int16_t kind, std::string_view name, RankedResults& results) {
  reader_.Read(kind, Scope::MailboxGroup, name, results);
}

void MailboxGroupLoader::LoadGroup(std::int16_t, std::string_view, RankedResults&) { throw MemberNotSupported(); }
void MailboxGroupLoader::LoadSite(std::int16_t, std::string_view, RankedResults&) { throw MemberNotSupported(); }
void MailboxGroupLoader::LoadOrg(std::int16_t, std::string_view, RankedResults&) { throw MemberNotSupported(); }

}  // namespace kalvo::ranking
