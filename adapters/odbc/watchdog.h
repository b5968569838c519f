#pragma once

#include <sql.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace kalvo::odbc {

// Cancels a statement that outstays its time, from a thread of its own: the one way that works with every driver.
// Watches one statement at a time. The thread starts with the first watch, so a process may fork before that.
class Watchdog {
 public:
  Watchdog() = default;
  ~Watchdog();

  // Watches a statement for as long as the watch lives.
  class Watch {
   public:
    Watch(Watchdog& watchdog, SQLHSTMT statement, std::chrono::milliseconds limit);
    ~Watch();

    // True when the statement was cancelled.
    bool Fired() const;

   private:
    Watchdog& watchdog_;
  };

 private:
  using Clock = std::chrono::steady_clock;

  void Run();

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::thread thread_;
  SQLHSTMT statement_ = SQL_NULL_HANDLE;  // the one that is watched
  Clock::time_point deadline_;
  bool fired_ = false;
  bool ending_ = false;
};

}  // namespace kalvo::odbc
