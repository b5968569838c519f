#include "bench/peers/typed_rows.h"

#include <stdexcept>

namespace kalvo::peers {
namespace {

// What the reports select, as the product's own statements do.
constexpr const char* kAlertFields =
    "select a.AlertedResource, a.AlertTime, a.Attrib2, a.Attrib3, a.Attrib4, a.Attrib5, a.Attrib6, a.Attrib7,"
    " a.Attrib8, a.Attrib9, s.Missing, at.AlertTypeCode, a.AlertId, a.AlertTypeId, a.Attrib1";
constexpr const char* kAlertRows =
    " from RMC_Alert a left join exdb_server s on a.Attrib2 = s.ComputerName, RMC_AlertType at"
    " where a.AlertTypeId = at.AlertTypeId and at.SubSystem = 'Exchange Manager'";
constexpr const char* kServerFields =
    "select s.DomainName, s.ComputerName, s.Missing, st.Mailboxes, st.MBSpace, st.PBFolders, st.PbSpace";
constexpr const char* kServerSums =
    "select sum(st.Mailboxes), sum(st.MBSpace), sum(st.PBFolders), sum(st.PbSpace), count(*)";
constexpr const char* kServerRows =
    " from EXDB_SERVER s, EXDB_SERVERCURRENT sc, EXDB_SERVERTOTALS st where sc.ServerId = s.ServerId"
    " and sc.HistoryType = 1 and sc.HistoryRecord = st.ServerTotalsId"
    " and s.DistOrgName = 'Kalvo Test' and s.DistSiteName = 'Main Site'";

std::string_view Text(sqlite3_stmt* row, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
  return text ? std::string_view(text, static_cast<std::size_t>(sqlite3_column_bytes(row, column)))
              : std::string_view();
}

// Reads "2003-01-15 14:05:09".
Moment ReadMoment(std::string_view text) {
  if (text.size() < 19) return {};
  const auto two = [&](std::size_t at) {
    return static_cast<std::uint8_t>((text[at] - '0') * 10 + (text[at + 1] - '0'));
  };
  return {static_cast<std::uint16_t>(two(0) * 100 + two(2)), two(5), two(8), two(11), two(14), two(17)};
}

// The rows of one page: those, and no more, cross from the engine. The columns behind the order break its ties.
std::string Ordered(const Wanted& wanted, const char* order, const char* ties) {
  std::string text = std::string(" order by ") + (wanted.order.empty() ? order : std::string(wanted.order).c_str());
  if (wanted.all) return text;
  return text + ties + " limit " + std::to_string(wanted.size) + " offset " + std::to_string(wanted.first - 1);
}

}  // namespace

Reader::Reader(const std::string& file) {
  if (sqlite3_open_v2(file.c_str(), &connection_, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr) != SQLITE_OK) {
    throw std::runtime_error("cannot open " + file);
  }
}

Reader::~Reader() { sqlite3_close(connection_); }

template <typename OnRow>
void Reader::Each(const std::string& sql, OnRow onRow) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(connection_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(connection_));
  }
  while (sqlite3_step(statement) == SQLITE_ROW) onRow(statement);
  if (sqlite3_finalize(statement) != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(connection_));
}

void Reader::Execute(const char* sql) {
  Each(sql, [](sqlite3_stmt*) {});
}

std::int64_t Reader::Number(const std::string& sql) {
  std::int64_t number = 0;
  Each(sql, [&](sqlite3_stmt* row) { number = sqlite3_column_int64(row, 0); });
  return number;
}

void Reader::Load(Report<Alert>& report, const Wanted& wanted) {
  if (!wanted.all) Execute("begin");
  Each(std::string(kAlertFields) + kAlertRows + Ordered(wanted, "AlertTime DESC", ", a.AlertId"),
       [&](sqlite3_stmt* row) {
         const auto keep = [&](int column) { return report.texts.Keep(Text(row, column)); };
         report.rows.push_back({keep(0), keep(2), keep(3), keep(4), keep(5), keep(6), keep(7), keep(8), keep(9),
                                ReadMoment(Text(row, 1)), sqlite3_column_int(row, 11),
                                sqlite3_column_int(row, 10) == 1});
         sqlite3_column_blob(row, 12);
         sqlite3_column_int(row, 13);
         keep(14);
       });
  report.first = wanted.all ? 1 : wanted.first;
  report.count = static_cast<std::int64_t>(report.rows.size());
  if (wanted.all) return;
  report.count = Number(std::string("select count(*)") + kAlertRows);
  Execute("commit");
}

void Reader::Load(Report<Server>& report, const Wanted& wanted) {
  if (!wanted.all) Execute("begin");
  Each(
      std::string(kServerFields) + kServerRows + Ordered(wanted, "ComputerName ASC", ", s.ServerId"),
      [&](sqlite3_stmt* row) {
        report.rows.push_back({report.texts.Keep(Text(row, 0)), report.texts.Keep(Text(row, 1)),
                               sqlite3_column_int64(row, 3), sqlite3_column_int64(row, 4), sqlite3_column_int64(row, 5),
                               sqlite3_column_int64(row, 6), sqlite3_column_int(row, 2) == 1});
      });
  Each(std::string(kServerSums) + kServerRows, [&](sqlite3_stmt* row) {
    report.totals = {{},
                     {},
                     sqlite3_column_int64(row, 0),
                     sqlite3_column_int64(row, 1),
                     sqlite3_column_int64(row, 2),
                     sqlite3_column_int64(row, 3),
                     false};
    report.count = sqlite3_column_int64(row, 4);
  });
  report.first = wanted.all ? 1 : wanted.first;
  if (!wanted.all) Execute("commit");
}

}  // namespace kalvo::peers
