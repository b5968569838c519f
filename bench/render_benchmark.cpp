// How fast a table renders from rows in memory, beside a hand-written loop that writes the same bytes. Both run in
// one process; the counters give rows/s and bytes/s, and "x loop" is the time of the library by that of the loop.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/memory_database.h"
#include "bench/memory_page.h"
#include "kalvo/column_database.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"
#include "kalvo/row_source.h"
#include "kalvo/table.h"
#include "kalvo/table_database.h"

namespace kalvo::bench {
namespace {

// ---- the report: servers with their figures, as the catalogue's table 31 shows them ------------------------

const std::vector<std::string> kFields = {"DomainName", "ComputerName", "Missing", "Mailboxes",
                                          "MBSpace",    "PBFolders",    "PbSpace"};

MemoryTable Servers(int rows) {
  MemoryTable table{kFields, {}};
  table.rows.reserve(static_cast<std::size_t>(rows));
  for (int i = 0; i < rows; ++i) {
    const std::string number = std::to_string(i);
    table.rows.push_back({"NORTH & SOUTH", "EXCH" + number, i % 20 == 0 ? "1" : "0", std::to_string(100 + i % 900),
                          std::to_string(1048576LL * (i % 5000) + 524288), std::to_string(i % 300),
                          std::to_string(1048576LL * (i % 700))});
  }
  return table;
}

// ---- the library -------------------------------------------------------------------------------------------

// A page of the report, as far as one can be asked for.
void RenderPage(MemoryPage& page, const Platform& platform, KalvoTableDatabase& tables, KalvoColumnDatabase& columns) {
  auto context = std::make_shared<Context>();
  auto display = std::make_shared<Display>(platform.locale);
  context->OnStartPage(page);
  display->OnStartPage(page);
  page.response->text.clear();
  tables.GetTable(TABLE_RES_ORGANIZATION_SERVERSUMMARY)
      ->BuildHTML(*context, *page.response, *display, columns, "None.", "Servers");
}

// Rows alone, as many as there are: a page shows 32767 at the most.
void RenderRows(MemoryPage& page, const Platform& platform, KalvoTableDatabase& tables, KalvoColumnDatabase& columns) {
  auto context = std::make_shared<Context>();
  auto display = std::make_shared<Display>(platform.locale);
  context->OnStartPage(page);
  display->OnStartPage(page);
  context->IncrementTableIndex();
  page.response->text.clear();
  const auto table = tables.GetTable(TABLE_RES_ORGANIZATION_SERVERSUMMARY);
  const auto source = table->GetDataSrc(*context);
  source->OpenDS();
  source->MoveFirst();
  std::string cell;
  for (std::int32_t row = 0; row < source->RecordCount(); ++row) {
    page.response->Write("<tr>\r\n");
    for (const std::int16_t id : table->GetColumns()) {
      cell.clear();
      columns.Column(id)->AppendData(cell, *context, *display, *source);
      page.response->Write(cell);
    }
    page.response->Write("</tr>\r\n");
    source->MoveNext();
  }
}

// ---- the loop ----------------------------------------------------------------------------------------------

void AppendEncoded(std::string& out, std::string_view text) {
  for (const char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      default: out += c;
    }
  }
}

void AppendGrouped(std::string& out, long long number) {
  const std::string digits = std::to_string(number);
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) out += ',';
    out += digits[i];
  }
}

void AppendMegabytes(std::string& out, const std::string& bytes) {
  const long long hundredths = (std::atoll(bytes.c_str()) * 100 + 524288) / 1048576;
  AppendGrouped(out, hundredths / 100);
  char cents[8];
  std::snprintf(cents, sizeof cents, ".%02lld", hundredths % 100);
  Append(out, std::string_view(cents), "MB");
}

void AppendRowByLoop(std::string& out, const std::vector<std::string>& row) {
  const std::string_view color = row[2] == "1" ? " bgcolor=\"#CCCCCC\"" : "";
  out += "<tr>\r\n<td align=\"left\">";
  AppendEncoded(out, row[0]);
  Append(out, "</td><td align=\"left\"", color, "><a href=\"../Resources/SingleServerReports.asp?Server=", row[1],
         "\" target=\"_top\">");
  AppendEncoded(out, row[1]);
  out += "</a></td><td align=\"right\">";
  AppendGrouped(out, std::atoll(row[3].c_str()));
  out += "</td><td align=\"right\">";
  AppendMegabytes(out, row[4]);
  out += "</td><td align=\"right\">";
  AppendGrouped(out, std::atoll(row[5].c_str()));
  out += "</td><td align=\"right\">";
  AppendMegabytes(out, row[6]);
  out += "</td></tr>\r\n";
}

// The data rows of a page: what lies between its header row and its totals row.
std::string_view DataRows(std::string_view page) {
  const auto start = page.find("<tr>\r\n<td align=\"left\">");
  const auto end = page.find("<tr>\r\n<td><strong>TOTAL");
  return start == std::string_view::npos ? std::string_view() : page.substr(start, end - start);
}

// ---- measuring ---------------------------------------------------------------------------------------------

template <auto kRender>
void Render(benchmark::State& state) {
  const auto rows = static_cast<int>(state.range(0));
  const MemoryTable servers = Servers(rows);
  MemoryDatabase database(servers);
  const MemoryParts parts(database);
  KalvoTableDatabase tables(parts.platform);
  KalvoColumnDatabase columns;
  MemoryPage page({{"First", "1"}, {"PageSize", "32767"}});

  const auto byLibrary = [&] { kRender(page, parts.platform, tables, columns); };
  std::string loop;
  const auto byLoop = [&] {
    loop.clear();
    for (const auto& row : servers.rows) AppendRowByLoop(loop, row);
    benchmark::DoNotOptimize(loop.data());
  };
  byLibrary();
  byLoop();
  if (loop != DataRows(page.response->text)) {
    state.SkipWithError("the loop and the library do not write the same bytes");
    return;
  }

  using Clock = std::chrono::steady_clock;
  double library = 0, hand = 0;
  for (auto _ : state) {
    const auto start = Clock::now();
    byLibrary();
    const auto middle = Clock::now();
    byLoop();
    const auto end = Clock::now();
    const double seconds = std::chrono::duration<double>(middle - start).count();
    library += seconds;
    hand += std::chrono::duration<double>(end - middle).count();
    state.SetIterationTime(seconds);
  }
  const auto runs = static_cast<double>(state.iterations());
  const auto bytes = static_cast<double>(page.response->text.size());
  state.counters["rows/s"] = rows * runs / library;
  state.counters["bytes/s"] = bytes * runs / library;
  state.counters["ns/row"] = library * 1e9 / (rows * runs);
  state.counters["x loop"] = library / hand;
}
BENCHMARK(Render<RenderPage>)->Name("page")->Arg(50)->Arg(1000)->Arg(30000)->UseManualTime();
BENCHMARK(Render<RenderRows>)->Name("rows")->Arg(50)->Arg(1000)->Arg(100000)->UseManualTime();

}  // namespace
}  // namespace kalvo::bench

BENCHMARK_MAIN();
