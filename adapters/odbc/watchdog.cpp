#include "adapters/odbc/watchdog.h"

namespace kalvo::odbc {

Watchdog::~Watchdog() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_one();
  if (thread_.joinable()) thread_.join();
}

bool Watchdog::IsOver() const { return Clock::now() >= deadline_ || (*isWanted_ && !(*isWanted_)()); }

// A driver may miss a cancel that reaches it between two steps, so it is repeated until the watch ends. The lock is
// held during the cancel: the statement cannot go away meanwhile.
void Watchdog::Run() {
  constexpr auto kBetweenLooks = std::chrono::milliseconds(100);
  std::unique_lock lock(mutex_);
  while (!ending_) {
    if (!statement_) {
      changed_.wait(lock);
    } else if (fired_ || !*isWanted_) {
      changed_.wait_until(lock, fired_ ? Clock::now() + kBetweenLooks : deadline_);
    } else {
      changed_.wait_until(lock, std::min(deadline_, Clock::now() + kBetweenLooks));
    }
    if (!statement_ || !(fired_ || IsOver())) continue;
    fired_ = true;
    SQLCancel(statement_);
  }
}

Watchdog::Watch::Watch(Watchdog& watchdog, SQLHSTMT statement, std::chrono::milliseconds limit,
                       const std::function<bool()>& isWanted)
    : watchdog_(watchdog) {
  const std::lock_guard lock(watchdog_.mutex_);
  watchdog_.statement_ = statement;
  watchdog_.deadline_ = Clock::now() + limit;
  watchdog_.isWanted_ = &isWanted;
  watchdog_.fired_ = false;
  if (!watchdog_.thread_.joinable()) watchdog_.thread_ = std::thread([&dog = watchdog_] { dog.Run(); });
  watchdog_.changed_.notify_one();
}

Watchdog::Watch::~Watch() {
  const std::lock_guard lock(watchdog_.mutex_);
  watchdog_.statement_ = SQL_NULL_HANDLE;
}

bool Watchdog::Watch::Fired() const {
  const std::lock_guard lock(watchdog_.mutex_);
  return watchdog_.fired_;
}

}  // namespace kalvo::odbc
