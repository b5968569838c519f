#include "host/cli/page_timer.h"

#include <unistd.h>

#include <chrono>
#include <iostream>
#include <utility>

namespace kalvo::host {

PageTimer::PageTimer(std::string page, double seconds)
    : thread_([this, page = std::move(page), seconds] {
        std::unique_lock lock(mutex_);
        if (changed_.wait_for(lock, std::chrono::duration<double>(seconds), [this] { return isOver_; })) return;
        std::cerr << "kalvo: " << page << ": the page has run for longer than its time limit" << std::endl;
        _exit(1);  // the page's own thread cannot be stopped
      }) {}

PageTimer::~PageTimer() {
  {
    const std::lock_guard lock(mutex_);
    isOver_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

}  // namespace kalvo::host
