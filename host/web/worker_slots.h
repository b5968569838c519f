#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

namespace kalvo::web {

// What a worker lets its supervisor see, in memory that both share.
struct WorkerSlot {
  std::atomic<std::int64_t> deadline{0};  // when the running page has to have ended, in `Milliseconds`; 0: no page runs
  std::atomic<std::uint32_t> pages{0};    // how many pages it has begun
  char page[256] = {};                    // the running page, zero-ended; written before `deadline`
};

// The slots of all workers. Made before they are forked.
class WorkerSlots {
 public:
  explicit WorkerSlots(int count);
  ~WorkerSlots();
  WorkerSlots(const WorkerSlots&) = delete;
  WorkerSlots& operator=(const WorkerSlots&) = delete;

  int Count() const { return count_; }
  WorkerSlot& operator[](int i) { return slots_[i]; }

 private:
  int count_;
  WorkerSlot* slots_;
};

// Marks a page as running for as long as this lives.
class RunningPage {
 public:
  RunningPage(WorkerSlot& slot, std::string_view page, std::int64_t milliseconds);
  ~RunningPage();
  RunningPage(const RunningPage&) = delete;
  RunningPage& operator=(const RunningPage&) = delete;

 private:
  WorkerSlot& slot_;
};

}  // namespace kalvo::web
