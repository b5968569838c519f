#pragma once

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "bench/peers/hand_page.h"

// What every program among the peers answers, so that one script can ask them in turns. Answers are lines of JSON.
//
//   time REPORT ROWS FIRST SIZE MILLISECONDS    renders again and again: {"median_us", "best_us", "bytes", "runs"}
//   copy REPORT ROWS FIRST SIZE MILLISECONDS    copies the finished text
//   dump REPORT ROWS FIRST SIZE FILE            writes the text into a file: {"bytes"}
namespace kalvo::peers {

struct Command {
  std::string verb, report;
  int rows = 0;
  Page page;
};

inline std::string DataFile(const std::string& folder, int rows) {
  return folder + "/data-" + std::to_string(rows) + ".db";
}

inline double Microseconds() {
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

template <typename Step>
void PrintTimes(double milliseconds, Step&& step) {
  constexpr std::size_t kFewest = 3;
  std::size_t bytes = step();
  std::vector<double> times;
  const double begin = Microseconds();
  for (double before = begin; before - begin < milliseconds * 1000 || times.size() < kFewest;) {
    bytes = step();
    const double now = Microseconds();
    times.push_back(now - before);
    before = now;
  }
  std::sort(times.begin(), times.end());
  std::printf("{\"median_us\": %.2f, \"best_us\": %.2f, \"bytes\": %zu, \"runs\": %zu}\n", times[times.size() / 2],
              times.front(), bytes, times.size());
}

// Answers the commands of the standard input. `render` makes the text of a page, valid until it is called again.
template <typename Render>
int AnswerCommands(Render&& render) {
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream words(line);
    Command asked;
    std::string last;
    words >> asked.verb >> asked.report >> asked.rows >> asked.page.first >> asked.page.size >> last;
    if (asked.verb == "time") {
      PrintTimes(std::stod(last), [&] { return render(asked).size(); });
    } else if (asked.verb == "copy") {
      const std::string from(render(asked));
      std::string to(from.size(), ' ');
      PrintTimes(std::stod(last), [&] {
        std::memcpy(to.data(), from.data(), from.size());
        asm volatile("" : : "r"(to.data()) : "memory");
        return to.size();
      });
    } else {
      const std::string_view text = render(asked);
      std::ofstream(last, std::ios::binary) << text;
      std::printf("{\"bytes\": %zu}\n", text.size());
    }
    std::fflush(stdout);
  }
  return 0;
}

// Makes a page from opening the database to its last byte, `runs` times: {"times_us", "bytes", "peak_kb"}. The most
// memory is that of the first run.
template <typename MakePage>
void PrintRuns(int runs, MakePage&& makePage) {
  std::size_t bytes = 0;
  rusage use{};
  std::printf("{\"times_us\": [");
  for (int run = 0; run < runs; ++run) {
    const double begin = Microseconds();
    bytes = makePage();
    std::printf("%s%.1f", run == 0 ? "" : ", ", Microseconds() - begin);
    if (run == 0) getrusage(RUSAGE_SELF, &use);
  }
  std::printf("], \"bytes\": %zu, \"peak_kb\": %ld}\n", bytes, use.ru_maxrss);
}

}  // namespace kalvo::peers
