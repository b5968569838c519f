// Each Top-N page at organization scope, over a sample: the time of the first page, the share of it that loading
// the ranking takes, and the most memory that the process has used so far.
//
//   topn_benchmark [FOLDER]    FOLDER holds the sample's kalvo.db; a large sample is made without it

#include <cstdio>

#include "adapters/ranking/make_ranking.h"
#include "adapters/sqlite/sqlite_database.h"
#include "bench/large_sample.h"
#include "host/cli/report_page.h"
#include "kalvo/platform/platform.h"
#include "kalvo/platform/ranking.h"

namespace {

using namespace kalvo;
using bench::Milliseconds;
using bench::PeakMebibytes;

constexpr std::string_view kOrganization = "Meridian";

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

void Measure(const std::string& file) {
  sqlite::SqliteDatabase database(file);
  const auto topN = ranking::MakeRanking(database);
  bench::StandingClock clock;
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

int main(int count, char** arguments) { return kalvo::bench::WithLargeSample(count, arguments, Measure); }
