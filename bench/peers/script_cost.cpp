// What a page script costs: a report's page made by a script, in turns with the same page made from C++, over rows in
// memory. Prints {"script_us", "plain_us"}, the medians.

#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/memory_database.h"
#include "bench/memory_page.h"
#include "host/script/page/site.h"
#include "kalvo/table_generator.h"

namespace {

using namespace kalvo;

constexpr const char* kPage = "alerts.asp";
constexpr const char* kScript =
    "<% var generator = Server.CreateObject('KalvoTables.KalvoforExchangeTableGenerator');\n"
    "generator.BuildTable(TABLE_CURRENTALERTS, '', '', '', '', '', TOPN_UNDEFINED, '', 'Current Alerts'); %>";

// A site of one page.
class OnePage {
 public:
  OnePage() {
    std::string name = (std::filesystem::temp_directory_path() / "kalvo-script-XXXXXX").string();
    if (!mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
    folder_ = name;
    std::ofstream(folder_ / kPage) << kScript;
  }
  ~OnePage() { std::filesystem::remove_all(folder_); }
  OnePage(const OnePage&) = delete;
  OnePage& operator=(const OnePage&) = delete;

  const std::filesystem::path& Folder() const { return folder_; }

 private:
  std::filesystem::path folder_;
};

class KeptText : public host::PageSink {
 public:
  void Head(const host::PageHead&) override {}
  void Body(std::string_view bytes) override { text += bytes; }
  std::string text;
};

class NoValues : public host::PageSession {
 public:
  Value Get(std::string_view) override { return {}; }
  void Set(std::string_view, const Value&) override {}
  void Abandon() override {}
  std::shared_ptr<LiveContainer> LiveDriller() override { return nullptr; }
};

std::string ByScript(host::Site& site) {
  KeptText sink;
  NoValues session;
  host::PageRequest request;
  request.url = "/report.asp";
  const host::PageResult result = site.Run(kPage, request, session, sink);
  if (result.failure) throw std::runtime_error(result.failure->message);
  return sink.text;
}

std::string FromProgram(const Platform& platform) {
  bench::MemoryPage page({});
  KalvoforExchangeTableGenerator generator(platform);
  generator.OnStartPage(page);
  generator.BuildTable(TABLE_CURRENTALERTS, "", "", "", "", "", TOPN_UNDEFINED, "", "Current Alerts");
  generator.OnEndPage();
  return page.response->text;
}

template <typename Step>
double Microseconds(Step&& step) {
  const auto begin = std::chrono::steady_clock::now();
  step();
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin).count();
}

double Median(std::vector<double>& times) {
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

void Measure() {
  constexpr int kPages = 2000;
  const bench::MemoryTable rows{{"Attrib3", "AlertedResource", "Attrib2", "AlertTypeCode", "Missing"},
                                {{"Mailbox", "Åsa Holm", "OSL-MAIL1", "5001", "0"}}};
  bench::MemoryDatabase database(rows);
  const bench::MemoryParts parts(database);
  const OnePage page;
  host::Site site(page.Folder(), parts.platform);
  if (ByScript(site) != FromProgram(parts.platform)) throw std::runtime_error("the two pages differ");
  std::vector<double> script, plain;
  for (int i = 0; i < kPages; ++i) {
    script.push_back(Microseconds([&] { ByScript(site); }));
    plain.push_back(Microseconds([&] { FromProgram(parts.platform); }));
  }
  std::printf("{\"script_us\": %.1f, \"plain_us\": %.1f}\n", Median(script), Median(plain));
}

}  // namespace

int main() {
  try {
    Measure();
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "script_cost: %s\n", error.what());
    return 1;
  }
}
