// The library as a peer, on the command line that the hand-written pages have.
//
//   product render FOLDER              answers commands on its input; rows as the SQLite adapter keeps them
//   product page FILE REPORT sqlite|odbc FIRST SIZE RUNS [FIELD DIRECTION]

#include <cstdio>
#include <stdexcept>

#include "adapters/odbc/odbc_database.h"
#include "adapters/sqlite/sqlite_database.h"
#include "bench/memory_database.h"
#include "bench/memory_page.h"
#include "bench/peers/commands.h"
#include "bench/peers/kept_database.h"
#include "kalvo/column_database.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/table.h"
#include "kalvo/table_database.h"

namespace kalvo::peers {
namespace {

struct Catalogued {
  KalvoTableConstants id;
  const char* title;
  const char* url;
};

Catalogued ReportNamed(std::string_view name) {
  if (name == "alerts") return {TABLE_CURRENTALERTS, "Current Alerts", "/KalvoforExchange/Tasks/CurrentAlerts.asp"};
  return {TABLE_RES_ORGANIZATION_SITESERVERSUMMARY, "Organization Site Server Summary",
          "/KalvoforExchange/Resources/SiteServerSummary.asp"};
}

class AddressedRequest : public bench::MemoryRequest {
 public:
  AddressedRequest(std::vector<bench::Parameter> query, std::string url)
      : MemoryRequest(std::move(query)), url_(std::move(url)) {}
  std::string ServerVariable(std::string_view name) override { return name == "URL" ? url_ : ""; }

 private:
  std::string url_;
};

// What makes one report page after another from a database.
class PageMaker {
 public:
  explicit PageMaker(Database& database) : parts_(database), tables_(parts_.platform) {}

  std::string_view Make(const Catalogued& report, std::vector<bench::Parameter> query) {
    page_.request = std::make_shared<AddressedRequest>(std::move(query), report.url);
    const auto context = std::make_shared<Context>();
    const auto display = std::make_shared<Display>(parts_.platform.locale);
    context->OnStartPage(page_);
    display->OnStartPage(page_);
    context->SetOrg("Kalvo Test");
    context->SetSite("Main Site");
    page_.response->text.clear();
    tables_.GetTable(report.id)->BuildHTML(*context, *page_.response, *display, columns_, "", report.title);
    return page_.response->text;
  }

 private:
  bench::MemoryParts parts_;
  KalvoTableDatabase tables_;
  KalvoColumnDatabase columns_;
  bench::MemoryPage page_{{}};
};

std::vector<bench::Parameter> QueryOf(const Page& page) {
  return {{"First", std::to_string(page.first)}, {"PageSize", std::to_string(page.size)}};
}

struct LoadedFile {
  explicit LoadedFile(const std::string& file) : real(file), kept(real), pages(kept) {}
  sqlite::SqliteDatabase real;
  KeptDatabase kept;
  PageMaker pages;
};

int Render(const std::string& folder) {
  std::map<int, LoadedFile> loaded;
  return AnswerCommands([&](const Command& asked) {
    LoadedFile& file = loaded.try_emplace(asked.rows, DataFile(folder, asked.rows)).first->second;
    return file.pages.Make(ReportNamed(asked.report), QueryOf(asked.page));
  });
}

void MakePages(const std::vector<std::string>& words) {
  const Catalogued report = ReportNamed(words[2]);
  auto query = QueryOf({std::stoll(words[4]), std::stoll(words[5])});
  if (words.size() > 8) {
    query.push_back({"Sort", words[7]});
    query.push_back({"SortOrder", words[8]});
  }
  PrintRuns(std::stoi(words[6]), [&] {
    std::unique_ptr<Database> database;
    if (words[3] == "odbc") database = std::make_unique<odbc::OdbcDatabase>();
    if (!database) database = std::make_unique<sqlite::SqliteDatabase>(words[1]);
    return PageMaker(*database).Make(report, query).size();
  });
}

int Run(const std::vector<std::string>& words) {
  if (words.size() == 2 && words[0] == "render") return Render(words[1]);
  if (words.size() < 7 || words[0] != "page") return 2;
  MakePages(words);
  return 0;
}

}  // namespace
}  // namespace kalvo::peers

int main(int count, char** arguments) {
  try {
    const int result = kalvo::peers::Run({arguments + 1, arguments + count});
    if (result == 2)
      std::fprintf(stderr, "usage: product render FOLDER | page FILE REPORT sqlite|odbc FIRST SIZE RUNS\n");
    return result;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "product: %s\n", error.what());
    return 1;
  }
}
