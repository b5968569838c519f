#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "host/web/worker_slots.h"

namespace kalvo::web {

class Log;
struct Generation;

// What a worker process does from its fork to its end, and its exit code. It may throw: that ends this worker, with
// a word in the log, and nobody else.
using WorkerLife = std::function<int(Generation& generation, WorkerSlot& slot, pid_t parent)>;

// The worker processes of a server: as many as the settings ask for, replaced when they die, ended when a page
// keeps one too long.
class WorkerPool {
 public:
  // The log outlives the pool.
  WorkerPool(WorkerLife life, const Log& log);

  // Workers are forked from this generation from now on. Those of an earlier one finish their page and go.
  void Use(std::shared_ptr<Generation> generation);

  // Every worker finishes its page and goes, and another takes its place, which has the log as it is now.
  void Renew();

  // Ends workers whose page outstays its limit, and starts the missing ones. To be called several times a second.
  void Keep();

  // Takes notice of a child process that ended. False when it was none of the workers.
  bool Ended(pid_t child, int status);

  // Every worker finishes its page and goes; none is started any more.
  void Retire();
  void KillAll();
  bool Empty() const { return workers_.empty(); }

 private:
  struct Member {
    pid_t process;
    int slot;
    std::shared_ptr<Generation> generation;
    std::int64_t started;
    bool retired = false;
    bool overdue = false;
  };

  void Start();
  int Live(WorkerSlot& slot, pid_t parent) noexcept;
  int FreeSlot() const;
  void EndOverdue();
  void RetireAllBut(const Generation* generation);
  void LogEnd(const Member& member, int status);

  WorkerLife life_;
  const Log& log_;
  WorkerSlots slots_;
  std::shared_ptr<Generation> generation_;
  std::vector<Member> workers_;
  std::int64_t nextStart_ = 0;  // not before this moment, after workers that died at once
  std::int64_t startDelay_ = 0;
};

}  // namespace kalvo::web
