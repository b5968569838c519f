#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>
#include <vector>

#include "host/parts/setting_error.h"
#include "host/web/log.h"
#include "host/web/login/password.h"
#include "host/web/login/session_store.h"
#include "kalvo/platform/live_mailbox.h"
#include "support/full_disk.h"
#include "support/temporary_folder.h"

namespace kalvo::test {

using namespace web;
using namespace web::login;

using std::chrono::milliseconds;

inline const User kAlice{"KALVO\\alice", true, false, "$argon2id$alice"};

class Sessions : public testing::Test {
 protected:
  SessionStore Store(const Lifetimes& lifetimes = {}, Waiting waiting = {}) {
    if (!waiting.isWanted) waiting.isWanted = [this] { return ++looks_ > 0; };
    return {folder_.Path() / "sessions", lifetimes, nobody_, log_, std::move(waiting)};
  }

  // The files of the sessions; what else the store keeps lies in folders.
  std::vector<std::filesystem::path> All() {
    std::vector<std::filesystem::path> all;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path() / "sessions")) {
      if (entry.is_regular_file()) all.push_back(entry.path());
    }
    return all;
  }

  // Makes every session look as old as that.
  void Age(std::int64_t seconds) {
    for (const auto& path : All()) {
      const timespec then{std::time(nullptr) - seconds, 0};
      const timespec times[] = {then, then};
      utimensat(AT_FDCWD, path.c_str(), times, 0);
    }
  }

  std::size_t Files() { return All().size(); }

  // Another request, which waits for the session in the background. It has its seat when this returns.
  std::thread WaitFor(SessionStore& store, const std::string& id, bool& got) {
    const int before = looks_;
    std::thread waiter([&store, id, &got] { got = store.Open(id, milliseconds(20'000)) != nullptr; });
    while (looks_ == before) std::this_thread::sleep_for(milliseconds(1));
    return waiter;
  }

  // Somebody who waits for a session has a file beside the seats.
  std::size_t Waiters() {
    std::size_t waiters = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path() / "sessions" / "waiting")) {
      waiters += entry.path().extension() == ".session";
    }
    return waiters;
  }

  TemporaryFolder folder_;
  Log log_{(folder_.Path() / "log").string()};
  host::LiveDrillerMaker nobody_;
  std::atomic<int> looks_{0};  // of those who wait, whether they still want to
};

}  // namespace kalvo::test
