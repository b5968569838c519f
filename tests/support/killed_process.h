#pragma once

#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <functional>

namespace kalvo::test {

enum class Calls { All, ThatSend };

// Whether the process that has stopped at a system call sends something to another one.
inline bool IsSending(pid_t process) {
  __ptrace_syscall_info info{};
  const auto size = reinterpret_cast<void*>(sizeof info);
  if (ptrace(static_cast<__ptrace_request>(PTRACE_GET_SYSCALL_INFO), process, size, &info) <= 0) return true;
  if (info.op != PTRACE_SYSCALL_INFO_ENTRY) return false;
  return info.entry.nr == SYS_write || info.entry.nr == SYS_writev || info.entry.nr == SYS_sendto ||
         info.entry.nr == SYS_sendmsg;
}

// Runs `work` in a process of its own and kills it at its system call number `calls`, each counted when it is entered
// and when it is left: between two calls a process changes nothing outside of itself, so all numbers together are
// every moment that it can be killed at. What only talks to a server changes nothing but where it sends. True when the
// work had come to its end before.
inline bool RunAndKillAt(int calls, Calls counted, const std::function<void()>& work) {
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
  ptrace(PTRACE_SETOPTIONS, process, nullptr, PTRACE_O_EXITKILL | PTRACE_O_TRACESYSGOOD);
  for (int call = 0; call < calls;) {
    if (ptrace(PTRACE_SYSCALL, process, nullptr, nullptr) != 0) break;
    if (waitpid(process, &status, 0) < 0 || WIFEXITED(status) || WIFSIGNALED(status)) {
      return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    if (counted == Calls::All || IsSending(process)) ++call;
  }
  kill(process, SIGKILL);
  waitpid(process, &status, 0);
  return false;
}

// Runs `work` again and again, killed one moment later each time, until it comes to its end; `check` looks at what is
// left each time. Answers the last moment that it was killed at. With a server each round takes its time: the short
// form takes every fourth moment.
inline int KillAtEveryMoment(Calls counted, const std::function<void()>& prepare, const std::function<void()>& work,
                             const std::function<void()>& check) {
  constexpr int kMostCalls = 5000;
  const int step = counted == Calls::ThatSend && std::getenv("KALVO_TEST_LONG") == nullptr ? 4 : 1;
  for (int calls = 1; calls < kMostCalls; calls += step) {
    prepare();
    const bool ended = RunAndKillAt(calls, counted, work);
    check();
    if (ended) return calls - step;
  }
  return 0;
}

}  // namespace kalvo::test
