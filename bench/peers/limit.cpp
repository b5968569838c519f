// The hand-written pages on a command line: the unit of every ratio.
//
//   limit render FOLDER              answers commands on its input; rows come from FOLDER/data-ROWS.db
//   limit page FILE REPORT all|window FIRST SIZE RUNS [ORDER]
//   limit http FILE                  serves alerts on a port that it prints
//
// --blocks, first of all, encodes texts 16 bytes at a time.

#include <cstdio>
#include <stdexcept>

#include "bench/peers/commands.h"
#include "bench/peers/hand_page.h"
#include "bench/peers/hand_server.h"

namespace kalvo::peers {
namespace {

template <typename Row>
const Report<Row>& Loaded(const std::string& folder, int rows, std::map<int, Report<Row>>& loaded) {
  const auto [at, isNew] = loaded.try_emplace(rows);
  if (isNew) Reader(DataFile(folder, rows)).Load(at->second);
  return at->second;
}

template <bool kBlocks>
int Render(const std::string& folder) {
  HandPage<kBlocks> page;
  std::map<int, Report<Alert>> alerts;
  std::map<int, Report<Server>> servers;
  return AnswerCommands([&](const Command& asked) {
    if (asked.report == "alerts") return page.Render(Loaded(folder, asked.rows, alerts), asked.page);
    return page.Render(Loaded(folder, asked.rows, servers), asked.page);
  });
}

template <bool kBlocks, typename Row>
void MakePages(const std::string& file, const Wanted& wanted, int runs) {
  HandPage<kBlocks> page;
  PrintRuns(runs, [&] {
    Reader reader(file);
    Report<Row> report;
    reader.Load(report, wanted);
    return page.Render(report, {wanted.first, wanted.size}).size();
  });
}

template <bool kBlocks>
int Run(const std::vector<std::string>& words) {
  if (words.size() == 2 && words[0] == "render") return Render<kBlocks>(words[1]);
  if (words.size() == 2 && words[0] == "http") return ServeByHand(words[1]);
  if (words.size() < 7 || words[0] != "page") return 2;
  const Wanted wanted{words[3] == "all", std::stoll(words[4]), std::stoll(words[5]), words.size() > 7 ? words[7] : ""};
  const int runs = std::stoi(words[6]);
  words[2] == "alerts" ? MakePages<kBlocks, Alert>(words[1], wanted, runs)
                       : MakePages<kBlocks, Server>(words[1], wanted, runs);
  return 0;
}

}  // namespace
}  // namespace kalvo::peers

int main(int count, char** arguments) {
  std::vector<std::string> words(arguments + 1, arguments + count);
  const bool blocks = !words.empty() && words[0] == "--blocks";
  if (blocks) words.erase(words.begin());
  try {
    const int result = blocks ? kalvo::peers::Run<true>(words) : kalvo::peers::Run<false>(words);
    if (result == 2) std::fprintf(stderr, "usage: limit [--blocks] render FOLDER | page FILE ... | http FILE\n");
    return result;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "limit: %s\n", error.what());
    return 1;
  }
}
