#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <set>

#include "database/raw_rows.h"
#include "database/sample_databases.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::test {

class Figures : public testing::Test {
 protected:
  static const Platform& Outside() { return SampleDatabases::Shared().PlatformOf(Engine::Sqlite); }
  static std::vector<RawRow> Table(std::string_view name) { return RowsOf(Outside(), name); }

  static std::vector<RawRow> Managed() {
    std::vector<RawRow> servers = Table("EXDB_SERVER");
    std::erase_if(servers, [](const RawRow& server) { return server.Number("serverstate") != 2; });
    return servers;
  }

  // The record of a server that EXDB_SERVERCURRENT points to; nothing for a server that was never scanned.
  static std::vector<RawRow> Current(std::int64_t server, int type, std::string_view table, const std::string& key) {
    std::vector<RawRow> found;
    for (const RawRow& current : Table("EXDB_SERVERCURRENT")) {
      if (current.Number("serverid") != server || current.Number("historytype") != type) continue;
      for (const RawRow& record : Table(table)) {
        if (record.Number(key) == current.Number("historyrecord")) found.push_back(record);
      }
    }
    return found;
  }

  static std::string GroupName(std::int64_t id) {
    for (const RawRow& group : Table("EXDB_GROUP")) {
      if (group.Number("groupid") == id) return group.Text("name");
    }
    return "";
  }
};

using Row = std::vector<std::string>;

inline Row Picked(const RawRow& row, const std::vector<std::string>& fields) {
  Row picked;
  for (const std::string& field : fields) picked.push_back(row.Text(field));
  return picked;
}

inline std::multiset<Row> Picked(const std::vector<RawRow>& rows, const std::vector<std::string>& fields) {
  std::multiset<Row> picked;
  for (const RawRow& row : rows) picked.insert(Picked(row, fields));
  return picked;
}

}  // namespace kalvo::test
