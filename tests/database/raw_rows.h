#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kalvo {
struct Platform;
}

namespace kalvo::test {

// One row of a table, its fields by name in lower case.
class RawRow {
 public:
  std::map<std::string, std::string> fields;

  const std::string& Text(const std::string& name) const { return fields.at(name); }
  std::int64_t Number(const std::string& name) const { return std::stoll(fields.at(name)); }
  bool Has(const std::string& name) const { return !fields.at(name).empty(); }
};

// All rows of a table, as they stand in the database: "select *" and nothing cleverer.
std::vector<RawRow> RowsOf(const Platform& platform, std::string_view table);

// The rows that a report loads in a scope, and its totals row; no totals where the report has none.
struct ReportRows {
  std::vector<RawRow> rows;
  RawRow totals;
};

struct Scope {
  std::string name, organization, site, mailbox;
};

// `fields` are the ones to read.
ReportRows RowsOfReport(const Platform& platform, int id, const Scope& scope, const std::vector<std::string>& fields,
                        const std::vector<std::string>& totals = {});

}  // namespace kalvo::test
