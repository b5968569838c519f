#include "host/web/worker_pool.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <stdexcept>
#include <thread>

#include "host/web/generation.h"
#include "host/web/log.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace web;

// A pool without pages: what its workers do is each test's own.
class Pools : public testing::Test {
 protected:
  ~Pools() override {
    if (!pool_) return;
    pool_->KillAll();
    while (!pool_->Empty()) Reap();
  }

  void Start(WorkerLife life, int workers) {
    pool_ = std::make_unique<WorkerPool>(std::move(life), log_);
    Settings settings;
    settings.site = folder_.Path() / "site";
    settings.sessions = folder_.Path() / "sessions";
    settings.workers = workers;
    std::filesystem::create_directories(settings.site);
    pool_->Use(std::make_shared<Generation>(settings, log_, trail_));
  }

  // How many children ended since the last call.
  int Reap() {
    int ended = 0, status = 0;
    for (pid_t child; (child = waitpid(-1, &status, WNOHANG)) > 0; ++ended) pool_->Ended(child, status);
    return ended;
  }

  void ReapUntil(const std::function<bool()>& happened) {
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!happened() && std::chrono::steady_clock::now() < until) {
      Reap();
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_TRUE(happened());
  }

  bool LogHas(const std::string& text) { return ReadFile(folder_.Path() / "log").find(text) != std::string::npos; }

  TemporaryFolder folder_;
  Log log_{(folder_.Path() / "log").string()};
  audit::Trail trail_{folder_.Path() / "audit", [this](std::string_view line) { log_.Write(line); }};
  std::unique_ptr<WorkerPool> pool_;
};

[[noreturn]] void StayForEver() {
  for (;;) pause();
}

TEST_F(Pools, LoseAWorkerThatThrowsAndNothingElse) {
  const pid_t self = getpid();
  const std::filesystem::path throwing = folder_.Path() / "throwing";

  Start(
      [&](Generation&, WorkerSlot& slot, pid_t) -> int {
        slot.pages = 1;
        if (!std::filesystem::exists(throwing)) {
          WriteFile(throwing, "");
          throw std::runtime_error("the cupboard is bare");
        }
        StayForEver();
      },
      3);
  ReapUntil([&] { return LogHas("a worker cannot go on: the cupboard is bare"); });
  ReapUntil([&] { return LogHas("ended with code 1"); });
  EXPECT_EQ(getpid(), self) << "no child came up here";
  EXPECT_EQ(Reap(), 0) << "the other workers live";
  pool_->Keep();
  EXPECT_FALSE(pool_->Empty());
}

TEST_F(Pools, LoseAWorkerThatThrowsWhatNobodyKnows) {
  Start([](Generation&, WorkerSlot&, pid_t) -> int { throw 42; }, 1);
  ReapUntil([&] { return LogHas("a worker cannot go on\n") && LogHas("ended with code 1"); });
}

TEST_F(Pools, ReplaceAWorkerThatEnded) {
  const std::filesystem::path first = folder_.Path() / "first";
  Start(
      [&](Generation&, WorkerSlot& slot, pid_t) -> int {
        slot.pages = 1;
        if (!std::filesystem::exists(first)) {
          WriteFile(first, "");
          return 7;
        }
        WriteFile(folder_.Path() / "second", "");
        StayForEver();
      },
      1);
  ReapUntil([&] { return LogHas("ended with code 7"); });
  ReapUntil([&] {
    pool_->Keep();
    return std::filesystem::exists(folder_.Path() / "second");
  });
}

}  // namespace
}  // namespace kalvo::test
