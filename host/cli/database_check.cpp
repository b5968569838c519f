#include "host/cli/database_check.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <functional>
#include <iomanip>
#include <optional>
#include <ostream>
#include <vector>

#include "database/schema.h"
#include "host/cli/questions.h"
#include "host/cli/report_page.h"
#include "host/cli/report_scope.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/database.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/platform.h"
#include "kalvo/table_constants.h"

namespace kalvo::host {
namespace {

std::string OneLine(std::string text) {
  std::ranges::replace_if(
      text, [](unsigned char c) { return std::iscntrl(c) != 0; }, ' ');
  return text;
}

// ---- the check ------------------------------------------------------------------------------------------

class Check {
 public:
  Check(const Platform& platform, std::ostream& out)
      : platform_(platform), out_(out), questions_(platform.database), reports_(platform) {}

  bool Opens() {
    try {
      platform_.database.Connect(TableConstants().TABLES_DSN());
      return true;
    } catch (const Error& error) {
      Line("Connection") << "fails: " << OneLine(error.Description()) << "\n";
      return false;
    }
  }

  // Every engine has its own word for its version; the first that is understood answers.
  void TellServer() {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 3> kWords = {{
        {"SQLite ", "select sqlite_version()"},
        {"", "select version()"},
        {"", "select @@version"},
    }};
    for (const auto& [engine, sql] : kWords) {
      try {
        const auto answer = questions_.Ask(sql);
        if (answer.empty()) continue;
        Line("Server") << engine << OneLine(answer[0][0]) << "\n";
        return;
      } catch (const Error&) {  // another engine's word
      }
    }
    Line("Server") << "does not tell its version\n";
  }

  bool IsProved(const DatabaseProof& proof) {
    const std::pair<std::string_view, const Proof&> kProofs[] = {{"Read-only", proof.readsOnly},
                                                                 {"Time limit", proof.stops}};
    for (const auto& [what, made] : kProofs) {
      Line(what) << (made.outcome == Proof::Outcome::Holds    ? ""
                     : made.outcome == Proof::Outcome::Broken ? "fails: "
                                                              : "not proved: ")
                 << OneLine(made.finding) << "\n";
    }
    return proof.Holds();
  }

  bool SchemaFits() {
    const std::vector<schema::Table> expected = schema::Tables();
    std::size_t columns = 0, missing = 0;
    for (const schema::Table& table : expected) {
      columns += table.columns.size();
      missing += MissingIn(table);
    }
    if (missing == 0) Line("Schema") << expected.size() << " tables with " << columns << " columns, all there\n";
    return missing == 0;
  }

  bool HistoryIsDisjoint() {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 4> kNumbers = {{
        {"EXDB_SERVERTOTALS", "ServerTotalsId"},
        {"EXDB_SERVERACTIVITY", "ServerActivityId"},
        {"EXDB_SERVERBACKUP", "ServerBackupId"},
        {"EXDB_RECIPIENTGROUPTOTALS", "RecipientGroupTotalsId"},
    }};
    bool disjoint = true;
    for (std::size_t i = 0; i < kNumbers.size(); ++i) {
      for (std::size_t k = i + 1; k < kNumbers.size(); ++k) {
        disjoint =
            NothingIn(Built([&](std::string& sql) {
                        Append(sql, "select min(a.", kNumbers[i].second, ") as First from ", kNumbers[i].first, " a, ",
                               kNumbers[k].first, " b where a.", kNumbers[i].second, " = b.", kNumbers[k].second);
                      }),
                      Built([&](std::string& what) {
                        Append(what, kNumbers[i].first, " and ", kNumbers[k].first, " share record number ");
                      })) &&
            disjoint;
      }
    }
    disjoint = NothingIn(
                   "select min(x.ServerId) as First from (select c.ServerId from EXDB_SERVERCURRENT c "
                   "where c.HistoryType < 3 group by c.ServerId, c.HistoryType having count(*) > 1) x",
                   "EXDB_SERVERCURRENT has several current totals or activities of server ") &&
               disjoint;
    if (disjoint) Line("History") << "record numbers are disjoint, current records unique\n";
    return disjoint;
  }

  bool ReportsRun() {
    const Place place = FirstPlace(platform_.database);
    Line("Scope") << "server \"" << place.server << "\", group \"" << place.group << "\", organization \""
                  << place.organization << "\", site \"" << place.site << "\"\n";
    int reports = 0, working = 0;
    for (const ReportName& report : ReportNames()) {
      if (reports_.SqlOf(report).empty() && !ReportCatalogue::IsRanking(report)) continue;
      ++reports;
      const std::vector<std::string> failures =
          FailuresOf(ReportPage(platform_).Build(report.id, reports_.ScopeOf(report, place)));
      if (failures.empty()) ++working;
      out_ << "  " << std::setw(2) << report.id << "  " << std::left << std::setw(56) << report.name << std::right
           << (failures.empty() ? "works" : "fails: " + failures.front()) << "\n";
    }
    Line("Reports") << working << " of " << reports << " work\n";
    return working == reports;
  }

 private:
  std::ostream& Line(std::string_view what) { return out_ << std::left << std::setw(12) << what << std::right; }

  // How many columns of the table are missing; each is named with the reports that read it.
  std::size_t MissingIn(const schema::Table& table) {
    std::vector<std::string> there;
    try {
      there = questions_.FieldNames("select * from " + table.name + " where (1 = 0)");
    } catch (const Error& error) {
      Line("Schema") << "missing table " << table.name << " (" << OneLine(error.Description()) << "); needed by "
                     << ReadersOf(table.name, "") << "\n";
      return table.columns.size();
    }
    std::size_t missing = 0;
    for (const std::string& column : table.columns) {
      const auto same = [&](const std::string& name) { return EqualsIgnoringAsciiCase(name, column); };
      if (std::ranges::any_of(there, same)) continue;
      ++missing;
      Line("Schema") << "missing column " << table.name << "." << column << "; needed by "
                     << ReadersOf(table.name, column) << "\n";
    }
    return missing;
  }

  // The reports whose SQL names the table and, where one is given, the column: by its name, or all of them by "*".
  std::string ReadersOf(std::string_view table, std::string_view column) {
    std::string readers;
    for (const ReportName& report : ReportNames()) {
      const std::string sql = ToLowerAscii(reports_.SqlOf(report));
      const bool reads = column.empty() ? FindWord(sql, ToLowerAscii(table)) != std::string::npos
                                        : ReadsColumn(sql, ToLowerAscii(table), ToLowerAscii(column));
      if (reads) Append(readers, readers.empty() ? "" : ", ", static_cast<int>(report.id), " ", report.name);
    }
    return readers.empty() ? "the Top-N reports" : readers;
  }

  static bool IsLetter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

  static std::size_t FindWord(std::string_view text, std::string_view word, std::size_t from = 0) {
    for (std::size_t at = text.find(word, from); at != std::string::npos; at = text.find(word, at + 1)) {
      const std::size_t end = at + word.size();
      if ((at == 0 || !IsLetter(text[at - 1])) && (end == text.size() || !IsLetter(text[end]))) return at;
    }
    return std::string::npos;
  }

  // Whether a statement reads a column of a table: it names both, or all columns of one of the table's aliases.
  static bool ReadsColumn(std::string_view sql, std::string_view table, std::string_view column) {
    std::size_t at = FindWord(sql, table);
    if (at == std::string::npos) return false;
    if (FindWord(sql, column) != std::string::npos) return true;
    for (; at != std::string::npos; at = FindWord(sql, table, at + 1)) {
      const std::size_t alias = std::min(at + table.size() + 1, sql.size());
      std::size_t end = alias;
      while (end < sql.size() && IsLetter(sql[end])) ++end;
      const std::string all = std::string(sql.substr(alias, end - alias)) + ".*";
      if (end > alias && FindWord(sql, all) != std::string::npos) return true;
    }
    return false;
  }

  // True when the statement's one value is null; tells it after `what` otherwise.
  bool NothingIn(std::string_view sql, std::string_view what) {
    try {
      const auto answer = questions_.Ask(sql);
      if (answer.empty() || answer[0][0].empty()) return true;
      Line("History") << what << answer[0][0] << "\n";
    } catch (const Error& error) {
      Line("History") << "cannot be read: " << OneLine(error.Description()) << "\n";
    }
    return false;
  }

  const Platform& platform_;
  std::ostream& out_;
  Questions questions_;
  ReportCatalogue reports_;
};

}  // namespace

int CheckDatabase(const Platform& platform, const CheckOptions& options, std::ostream& out) {
  const auto told = [&](std::string_view what, const std::string& text) {
    if (!text.empty()) out << std::left << std::setw(12) << what << std::right << text << "\n";
  };
  told("Data source", options.where);
  told("Driver", options.driver);
  Check check(platform, out);
  if (!check.Opens()) return 1;
  check.TellServer();
  const bool proved = !options.proof || check.IsProved(*options.proof);
  const bool fits = check.SchemaFits();
  const bool disjoint = check.HistoryIsDisjoint();
  const bool run = check.ReportsRun();
  return proved && fits && disjoint && run ? 0 : 1;
}

}  // namespace kalvo::host
