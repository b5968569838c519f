#include "database/schema.h"

#include <algorithm>
#include <utility>

#include "kalvo/platform/text_tools.h"

namespace kalvo::schema {
namespace {

struct EngineRow {
  Engine engine;
  std::string_view dateTime, identifier, nameCollation, tableEnd, postgresqlAlone;
};

// clang-format off
constexpr EngineRow kEngines[] = {
// engine               @DT@            @B16@         @CI@                                          @END@  @PG@
  {Engine::Sqlite,      "datetime",     "blob",       " collate nocase",                            "",    "-- "},
  {Engine::Postgresql,  "timestamp(0)", "bytea",      "",                                           "",    ""},
  {Engine::Mariadb,     "datetime",     "binary(16)", "", " character set utf8mb4 collate utf8mb4_general_ci", "-- "},
  {Engine::SqlServer,   "datetime2(0)", "binary(16)", " collate Latin1_General_100_CI_AS_SC_UTF8",  "",    "-- "},
};
// clang-format on

// The text without its comments: the schema has none but "--" to the end of a line.
std::string WithoutComments(std::string_view text) {
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    if (text.substr(at, 2) == "--") {
      at = std::min(text.find('\n', at), text.size());
    } else {
      out += text[at++];
    }
  }
  return out;
}

std::vector<std::string> Pieces(std::string_view text, char separator) {
  std::vector<std::string> pieces;
  int depth = 0;
  std::size_t start = 0;
  for (std::size_t at = 0; at <= text.size(); ++at) {
    if (at < text.size() && text[at] == '(') ++depth;
    if (at < text.size() && text[at] == ')') --depth;
    if (at == text.size() || (text[at] == separator && depth == 0)) {
      const std::string_view piece = Trimmed(text.substr(start, at - start));
      if (!piece.empty()) pieces.emplace_back(piece);
      start = at + 1;
    }
  }
  return pieces;
}

bool IsIndex(std::string_view statement) {
  return statement.starts_with("create index") || statement.starts_with("create unique index");
}

std::vector<std::string> Statements(Engine engine, bool indexes) {
  const auto row = std::find_if(std::begin(kEngines), std::end(kEngines),
                                [&](const EngineRow& candidate) { return candidate.engine == engine; });
  std::string text(Text());
  ReplaceAll(text, "@PG@", row->postgresqlAlone);
  text = WithoutComments(text);
  ReplaceAll(text, "@DT@", row->dateTime);
  ReplaceAll(text, "@B16@", row->identifier);
  ReplaceAll(text, "@CI@", row->nameCollation);
  ReplaceAll(text, "@END@", row->tableEnd);
  std::vector<std::string> statements = Pieces(text, ';');
  std::erase_if(statements, [&](const std::string& statement) { return IsIndex(statement) != indexes; });
  return statements;
}

std::string FirstWord(std::string_view text) { return std::string(text.substr(0, text.find_first_of(" \n("))); }

}  // namespace

std::vector<std::string> TableStatements(Engine engine) { return Statements(engine, false); }

std::vector<std::string> IndexStatements(Engine engine) { return Statements(engine, true); }

std::vector<Table> Tables() {
  constexpr std::string_view kCreate = "create table ", kAlter = "alter table ", kAdd = " add ";
  std::vector<Table> tables;
  for (const std::string& statement : TableStatements(Engine::Sqlite)) {
    const std::string_view text = statement;
    if (text.starts_with(kCreate)) {
      Table& table = tables.emplace_back(Table{FirstWord(text.substr(kCreate.size())), {}});
      const std::size_t open = text.find('('), close = text.rfind(')');
      for (const std::string& definition : Pieces(text.substr(open + 1, close - open - 1), ',')) {
        if (!definition.starts_with("primary key")) table.columns.push_back(FirstWord(definition));
      }
    } else if (text.starts_with(kAlter)) {
      const std::string name = FirstWord(text.substr(kAlter.size()));
      const std::string_view definition = text.substr(text.find(kAdd) + kAdd.size());
      for (Table& table : tables) {
        if (table.name == name) table.columns.push_back(FirstWord(definition));
      }
    }
  }
  return tables;
}

}  // namespace kalvo::schema
