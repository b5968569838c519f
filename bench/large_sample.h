#pragma once

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>

#include "database/sample/sample.h"
#include "kalvo/platform/clock.h"

// What the benchmarks over a whole sample share: where it comes from, and how time and memory are taken.
namespace kalvo::bench {

class StandingClock : public Clock {
 public:
  Date Now() override { return Date{36162}; }
  float Timer() override { return 0; }
};

// The shortest of some runs, in milliseconds.
template <typename Step>
double Milliseconds(Step&& step) {
  constexpr int kRuns = 5;
  double best = 1e9;
  for (int run = 0; run < kRuns; ++run) {
    const auto start = std::chrono::steady_clock::now();
    step();
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    best = std::min(best, took.count());
  }
  return best;
}

// The most memory that the process has used so far.
inline double PeakMebibytes() {
  rusage use{};
  getrusage(RUSAGE_SELF, &use);
  return static_cast<double>(use.ru_maxrss) / 1024;
}

// Runs `measure` on the kalvo.db in the folder that the command line names. Without one it makes a large sample and
// has it measured by a process of its own, so that making it does not count. The program's exit code.
inline int WithLargeSample(int count, char** arguments, void (*measure)(const std::string& file)) {
  if (count > 1) {
    measure((std::filesystem::path(arguments[1]) / "kalvo.db").string());
    return 0;
  }
  const std::filesystem::path program = std::filesystem::canonical("/proc/self/exe");
  const std::filesystem::path folder = std::filesystem::temp_directory_path() / (program.filename().string() + "-data");
  sample::TextProgress progress(std::cerr);
  sample::MakeSample({folder, sample::SampleSize::Large, 1}, progress);
  std::cout << "\n" << std::flush;
  const int failed = std::system((program.string() + " " + folder.string()).c_str());
  std::filesystem::remove_all(folder);
  return failed == 0 ? 0 : 1;
}

}  // namespace kalvo::bench
