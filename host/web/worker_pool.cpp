#include "host/web/worker_pool.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/steady_clock.h"
#include "host/web/generation.h"
#include "host/web/log.h"
#include "kalvo/platform/append.h"

namespace kalvo::web {
namespace {

constexpr int kMostWorkers = 2048;  // two generations of the most that the settings allow
constexpr std::int64_t kFirstDelay = 100, kLongestDelay = 5000;

}  // namespace

WorkerPool::WorkerPool(WorkerLife life, const Log& log) : life_(std::move(life)), log_(log), slots_(kMostWorkers) {}

void WorkerPool::Use(std::shared_ptr<Generation> generation) {
  generation_ = std::move(generation);
  startDelay_ = nextStart_ = 0;
  Keep();
  RetireAllBut(generation_.get());
}

void WorkerPool::Renew() {
  std::vector<pid_t> old;
  for (Member& member : workers_) {
    if (!member.retired) old.push_back(member.process);
    member.retired = true;
  }
  startDelay_ = nextStart_ = 0;
  Keep();
  for (const pid_t process : old) kill(process, SIGTERM);
}

void WorkerPool::Keep() {
  EndOverdue();
  if (!generation_ || base::Milliseconds() < nextStart_) return;
  const auto isCurrent = [this](const Member& member) { return !member.retired && member.generation == generation_; };
  for (auto count = std::count_if(workers_.begin(), workers_.end(), isCurrent); count < generation_->settings.workers;
       ++count) {
    Start();
  }
}

void WorkerPool::Start() {
  const int slot = FreeSlot();
  if (slot < 0) return;
  slots_[slot].deadline = 0;
  slots_[slot].pages = 0;
  const pid_t parent = getpid();
  std::fflush(nullptr);
  const pid_t process = fork();
  if (process == 0) {
    setpgid(0, 0);
    // The parent's objects are the parent's to destroy.
    _exit(Live(slots_[slot], parent));
  }
  if (process < 0) {
    log_.Write(std::string("a worker could not be started: ") + std::strerror(errno));
    nextStart_ = base::Milliseconds() + kLongestDelay;
    return;
  }
  workers_.push_back({process, slot, generation_, base::Milliseconds()});
}

// All that a child of the supervisor ever runs: nothing goes up from here into what is the supervisor's to do.
int WorkerPool::Live(WorkerSlot& slot, pid_t parent) noexcept {
  try {
    return life_(*generation_, slot, parent);
  } catch (const std::exception& error) {
    log_.Write(std::string("a worker cannot go on: ") + error.what());
  } catch (...) {
    log_.Write("a worker cannot go on");
  }
  return EXIT_FAILURE;
}

int WorkerPool::FreeSlot() const {
  for (int slot = 0; slot < slots_.Count(); ++slot) {
    if (std::none_of(workers_.begin(), workers_.end(), [slot](const Member& m) { return m.slot == slot; })) return slot;
  }
  return -1;
}

void WorkerPool::EndOverdue() {
  const std::int64_t now = base::Milliseconds();
  for (Member& member : workers_) {
    const std::int64_t deadline = slots_[member.slot].deadline;
    if (deadline == 0 || now < deadline || member.overdue) continue;
    member.overdue = true;
    kill(member.process, SIGKILL);
  }
}

bool WorkerPool::Ended(pid_t child, int status) {
  const auto found =
      std::find_if(workers_.begin(), workers_.end(), [child](const Member& member) { return member.process == child; });
  if (found == workers_.end()) return false;
  LogEnd(*found, status);
  const bool atOnce = slots_[found->slot].pages == 0 && !found->retired && base::Milliseconds() - found->started < 1000;
  workers_.erase(found);
  startDelay_ = atOnce ? std::clamp(startDelay_ * 2, kFirstDelay, kLongestDelay) : 0;
  nextStart_ = base::Milliseconds() + startDelay_;
  return true;
}

void WorkerPool::LogEnd(const Member& member, int status) {
  const bool clean = WIFEXITED(status) && WEXITSTATUS(status) == 0;
  if (clean) return;
  const WorkerSlot& slot = slots_[member.slot];
  std::string line = "worker ";
  Append(line, static_cast<int>(member.process));
  if (member.overdue) {
    Append(line, " was ended: its page outstayed the time limit");
  } else if (WIFSIGNALED(status)) {
    Append(line, " died of signal ", WTERMSIG(status), " (", strsignal(WTERMSIG(status)), ')');
  } else {
    Append(line, " ended with code ", WEXITSTATUS(status));
  }
  if (slot.deadline != 0) Append(line, "; it was running ", static_cast<const char*>(slot.page));
  log_.Write(line);
}

void WorkerPool::RetireAllBut(const Generation* generation) {
  for (Member& member : workers_) {
    if (member.generation.get() == generation || member.retired) continue;
    member.retired = true;
    kill(member.process, SIGTERM);
  }
}

void WorkerPool::Retire() {
  generation_.reset();
  RetireAllBut(nullptr);
}

void WorkerPool::KillAll() {
  for (const Member& member : workers_) kill(member.process, SIGKILL);
}

}  // namespace kalvo::web
