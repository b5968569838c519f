#include "adapters/sql/diagnostics.h"

#include <string>

#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::sql {

namespace {

constexpr std::string_view kTimeout = "[HYT00]";

struct Rule {
  std::string_view sqlState;  // its beginning
  std::string_view text;      // part of the driver's text
  std::int32_t number;
};

// The first rule that fits decides.
// clang-format off
constexpr Rule kRules[] = {
// SQLSTATE  text                       number
  {"42S02",  "",                        codes::kUnknownTable},
  {"42P01",  "",                        codes::kUnknownTable},
  {"42501",  "",                        codes::kFailed},         // no right to read it
  {"42000",  " command denied to user", codes::kFailed},
  {"42",     "",                        codes::kSqlSyntax},
  {"23000",  "ambiguous",               codes::kSqlSyntax},
  {"HY000",  "no such table",           codes::kUnknownTable},
  {"HY000",  "no such column",          codes::kSqlSyntax},
  {"HY000",  "no such function",        codes::kSqlSyntax},
  {"HY000",  "ambiguous column name",   codes::kSqlSyntax},
  {"HY000",  "syntax error",            codes::kSqlSyntax},
  {"HY000",  "incomplete input",        codes::kSqlSyntax},
  {"HY000",  "unrecognized token",      codes::kSqlSyntax},
};
// clang-format on

std::int32_t NumberOf(std::string_view sqlState, std::string_view text) {
  for (const Rule& rule : kRules) {
    if (sqlState.starts_with(rule.sqlState) && text.find(rule.text) != std::string::npos) return rule.number;
  }
  return codes::kFailed;
}

// Drivers break their texts into lines, and quote what the page was asked for.
std::string Described(std::string_view sqlState, std::string_view text) {
  return Built([&](std::string& out) { Append(out, '[', sqlState, "] ", InDescription(text)); });
}

}  // namespace

Error DatabaseError(std::string_view sqlState, std::string_view text) {
  return Error(NumberOf(sqlState, text), Described(sqlState, text));
}

Error ConnectionError(std::string_view sqlState, std::string_view text) {
  return Error(codes::kFailed, Described(sqlState, text));
}

Error TimeoutError(double seconds) {
  return Error(codes::kFailed, Built([&](std::string& out) {
                 Append(out, kTimeout, " The query was stopped after ");
                 AppendDouble(out, seconds);
                 Append(out, " seconds.");
               }));
}

bool IsTimeout(const Error& error) { return error.Description().starts_with(kTimeout); }

}  // namespace kalvo::sql
