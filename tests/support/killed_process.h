#pragma once

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

namespace kalvo::test {

// Runs `work` in a process of its own and kills it when it enters or leaves its system call number `calls`: between
// two calls a process changes nothing outside of itself, so all numbers together are every moment that it can be
// killed at. True when the work had come to its end before.
inline bool RunAndKillAfter(int calls, const std::function<void()>& work) {
  const pid_t process = fork();
  if (process == 0) {
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    raise(SIGSTOP);
    try {
      work();
    } catch (...) {
      _exit(1);
    }
    _exit(0);
  }
  int status = 0;
  waitpid(process, &status, 0);
  ptrace(PTRACE_SETOPTIONS, process, nullptr, PTRACE_O_EXITKILL);
  for (int call = 0; call < calls; ++call) {
    if (ptrace(PTRACE_SYSCALL, process, nullptr, nullptr) != 0) break;
    if (waitpid(process, &status, 0) < 0 || WIFEXITED(status) || WIFSIGNALED(status)) {
      return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
  }
  kill(process, SIGKILL);
  waitpid(process, &status, 0);
  return false;
}

// Runs `work` again and again, killed one moment later each time, until it comes to its end; `check` looks at what is
// left each time. Answers how many times it was killed.
inline int KillAtEveryMoment(const std::function<void()>& prepare, const std::function<void()>& work,
                             const std::function<void()>& check) {
  constexpr int kMostCalls = 5000;
  for (int calls = 1; calls < kMostCalls; ++calls) {
    prepare();
    const bool ended = RunAndKillAfter(calls, work);
    check();
    if (ended) return calls - 1;
  }
  return 0;
}

}  // namespace kalvo::test
