#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace kalvo::host {

// Ends the program when a page outstays its time: inside of a built-in, a driver or a mail library the page's own limit
// cannot reach it. Says which page it was, and exits with 1.
class PageTimer {
 public:
  PageTimer(std::string page, double seconds);
  ~PageTimer();
  PageTimer(const PageTimer&) = delete;
  PageTimer& operator=(const PageTimer&) = delete;

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool isOver_ = false;
  std::thread thread_;
};

}  // namespace kalvo::host
