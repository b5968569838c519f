// Each Top-N page at organization scope, over a sample: the time of the first page, the share of it that loading
// the ranking takes, and the most memory that the process has used so far.
//
//   topn_benchmark [FOLDER]    FOLDER holds the sample's kalvo.db; a large sample is made without it

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iostream>

#include "adapters/ranking/ranking.h"
#include "adapters/sqlite/sqlite_database.h"
#include "database/sample/sample.h"
#include "host/cli/report_page.h"
#include "platform/clock.h"
#include "platform/platform.h"
#include "platform/ranking.h"

namespace {

using namespace kalvo;

constexpr std::string_view kOrganization = "Meridian";
constexpr int kRuns = 5;

class StandingClock : public Clock {
 public:
  Date Now() override { return Date{36162}; }
  float Timer() override { return 0; }
};

struct Report {
  KalvoTableConstants id;
  std::int16_t kind;
  const char* name;
};

// clang-format off
constexpr Report kReports[] = {
// id                                  kind  title
  {TABLE_TOPN_MBCNT,                   1,    "mailboxes, messages"},
  {TABLE_TOPN_MBSPACE,                 2,    "mailboxes, space"},
  {TABLE_TOPN_MailboxAverageSize,      21,   "mailboxes, average size"},
  {TABLE_TOPN_MBOLDCNT,                8,    "mailboxes, old messages"},
  {TABLE_TOPN_MBOLDSPACE,              9,    "mailboxes, space of old ones"},
  {TABLE_TOPN_PFMSGCNT,                4,    "public folders, messages"},
  {TABLE_TOPN_PFSPACE,                 5,    "public folders, space"},
  {TABLE_TOPN_PublicFolderAverageSize, 22,   "public folders, average size"},
  {TABLE_TOPN_PFOLDCNT,                11,   "public folders, old messages"},
  {TABLE_TOPN_PFOLDSPACE,              12,   "public folders, space of old ones"},
  {TABLE_TOPN_MBSTALE,                 13,   "mailboxes, stale"},
  {TABLE_TOPN_PFSTALE,                 14,   "public folders, stale"},
  {TABLE_TOPN_OLDMBMSG,                6,    "mailbox messages, oldest"},
  {TABLE_TOPN_OLDPFMSG,                7,    "public folder messages, oldest"},
  {TABLE_TOPN_LARGEMBMSG,              17,   "mailbox messages, largest"},
  {TABLE_TOPN_LARGEPFMSG,              19,   "public folder messages, largest"},
  {TABLE_TOPN_LARGEOLDMBMSG,           18,   "mailbox messages, largest old"},
  {TABLE_TOPN_LARGEOLDPFMSG,           20,   "public folder messages, largest old"},
};
// clang-format on

// The shortest of some runs, in milliseconds.
template <typename Step>
double Milliseconds(Step&& step) {
  double best = 1e9;
  for (int run = 0; run < kRuns; ++run) {
    const auto start = std::chrono::steady_clock::now();
    step();
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    best = std::min(best, took.count());
  }
  return best;
}

double PeakMebibytes() {
  rusage use{};
  getrusage(RUSAGE_SELF, &use);
  return static_cast<double>(use.ru_maxrss) / 1024;
}

void Measure(const std::string& file) {
  sqlite::SqliteDatabase database(file);
  const auto topN = ranking::MakeRanking(database);
  StandingClock clock;
  const Platform platform{database, *topN, clock};
  const host::ReportPage page(platform);
  const host::ReportScope scope{"", std::string(kOrganization), "", "", TOPN_ORGANIZATION};
  std::printf("%-38s %10s %10s %8s %10s\n", "report", "page ms", "load ms", "rows", "peak MiB");
  for (const Report& report : kReports) {
    const double whole = Milliseconds([&] { page.Build(report.id, scope); });
    std::int32_t rows = 0;
    const double load = Milliseconds([&] {
      const auto results = topN->NewResults();
      topN->NewServerLoader()->LoadOrg(report.kind, kOrganization, *results);
      rows = results->Count();
    });
    std::printf("%-38s %10.2f %10.2f %8d %10.1f\n", report.name, whole, load, rows, PeakMebibytes());
  }
}

}  // namespace

int main(int count, char** arguments) {
  if (count > 1) {
    Measure((std::filesystem::path(arguments[1]) / "kalvo.db").string());
    return 0;
  }
  // Measured by a process of its own, so that making the sample does not count.
  const std::filesystem::path folder = std::filesystem::temp_directory_path() / "kalvo-topn-benchmark";
  sample::TextProgress progress(std::cerr);
  sample::MakeSample({folder, sample::SampleSize::Large, 1}, progress);
  std::cout << "\n" << std::flush;
  const std::string again = std::filesystem::canonical("/proc/self/exe").string() + " " + folder.string();
  const int failed = std::system(again.c_str());
  std::filesystem::remove_all(folder);
  return failed == 0 ? 0 : 1;
}
