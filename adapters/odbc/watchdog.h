#pragma once

#include <sql.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace kalvo::odbc {

// Cancels a statement that outstays its time or that nobody wants any more, from a thread of its own: the one way that
// works with every driver. Watches one statement at a time. The thread starts with the first watch, so a process may
// fork before that.
class Watchdog {
 public:
  Watchdog() = default;
  ~Watchdog();

  // Watches a statement for as long as the watch lives.
  class Watch {
   public:
    // `isWanted` outlives the watch and is asked ten times a second; an empty one always wants.
    Watch(Watchdog& watchdog, SQLHSTMT statement, std::chrono::milliseconds limit,
          const std::function<bool()>& isWanted);
    ~Watch();

    // True when the statement was cancelled.
    bool Fired() const;

   private:
    Watchdog& watchdog_;
  };

 private:
  using Clock = std::chrono::steady_clock;

  void Run();
  bool IsOver() const;

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::thread thread_;
  SQLHSTMT statement_ = SQL_NULL_HANDLE;  // the one that is watched
  Clock::time_point deadline_;
  const std::function<bool()>* isWanted_ = nullptr;
  bool fired_ = false;
  bool ending_ = false;
};

}  // namespace kalvo::odbc
