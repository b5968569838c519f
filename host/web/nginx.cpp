#include "host/web/nginx.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

#include "base/file.h"
#include "base/steady_clock.h"
#include "host/parts/setting_error.h"
#include "host/web/log.h"
#include "host/web/run_folder.h"
#include "kalvo/platform/append.h"

namespace kalvo::web {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kStartMilliseconds = 10000;
constexpr std::int64_t kRestartMilliseconds = 1000;
constexpr std::uintmax_t kLongestLog = 4 << 20;  // bytes

// What nginx wrote since `from`.
std::string LogSince(const fs::path& file, std::uintmax_t from) {
  return base::ReadPiece(base::Open(file, O_RDONLY), kLongestLog, from).value_or("");
}

std::uintmax_t SizeOf(const fs::path& file) {
  std::error_code error;
  const auto size = fs::file_size(file, error);
  return error ? 0 : size;
}

}  // namespace

Nginx::Nginx(std::string program, const RunFolder& run, const Log& log)
    : program_(std::move(program)), run_(run), log_(log) {}

void Nginx::Fork() {
  fs::remove(run_.NginxPid());
  if (std::error_code none; !socket_.empty() && fs::is_socket(socket_, none)) fs::remove(socket_, none);
  const std::string folder = run_.Path().string(), config = run_.NginxConfig().string(), log = run_.NginxLog().string();
  const pid_t parent = getpid();
  process_ = fork();
  if (process_ < 0) throw host::SettingError(std::string("nginx cannot be started: ") + std::strerror(errno));
  if (process_ > 0) {
    setpgid(process_, process_);
    return;
  }
  // A group of its own: Ctrl-C reaches the supervisor alone, and a killed nginx leaves no helper behind.
  setpgid(0, 0);
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) _exit(0);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  const base::File out = base::Open(log, O_WRONLY | O_APPEND | O_CREAT), in = base::Open("/dev/null", O_RDONLY);
  dup2(in.Handle(), STDIN_FILENO);
  dup2(out.Handle(), STDOUT_FILENO);
  dup2(out.Handle(), STDERR_FILENO);
  execlp(program_.c_str(), program_.c_str(), "-p", folder.c_str(), "-c", config.c_str(), "-e", log.c_str(), nullptr);
  const std::string why = "cannot run " + program_ + ": " + std::strerror(errno) + "\n";
  _exit(write(STDERR_FILENO, why.data(), why.size()) < 0 ? 126 : 127);
}

// nginx writes its process id once it has bound its addresses.
bool Nginx::Listens() const {
  std::ifstream in(run_.NginxPid());
  pid_t written = 0;
  return in >> written && written == process_;
}

void Nginx::Start() {
  const std::uintmax_t before = SizeOf(run_.NginxLog());
  Fork();
  const std::int64_t until = base::Milliseconds() + kStartMilliseconds;
  while (!Listens()) {
    int status = 0;
    if (waitpid(process_, &status, WNOHANG) == process_) {
      process_ = 0;
      throw host::SettingError("nginx did not start: " + LogSince(run_.NginxLog(), before));
    }
    if (base::Milliseconds() > until) {
      Kill();
      throw host::SettingError("nginx did not start within 10 seconds: " + LogSince(run_.NginxLog(), before));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

void Nginx::Keep() {
  if (Running() || quitting_ || base::Milliseconds() < nextStart_) return;
  nextStart_ = base::Milliseconds() + kRestartMilliseconds;
  Fork();
}

void Nginx::Reload() {
  if (Running()) kill(process_, SIGHUP);
}

void Nginx::ReopenLog() {
  if (Running()) kill(process_, SIGUSR1);
}

void Nginx::BoundLog() {
  if (SizeOf(run_.NginxLog()) < kLongestLog) return;
  std::error_code failed;
  fs::rename(run_.NginxLog(), run_.NginxLog().string() + ".old", failed);
  ReopenLog();
}

void Nginx::Quit() {
  quitting_ = true;
  if (Running()) kill(process_, SIGQUIT);
}

void Nginx::Kill() {
  quitting_ = true;
  if (Running()) kill(-process_, SIGKILL);
}

bool Nginx::Ended(pid_t child, int status) {
  if (child != process_) return false;
  // Helpers of a master that was killed would keep the address.
  kill(-process_, SIGKILL);
  process_ = 0;
  if (quitting_) return true;
  nextStart_ = base::Milliseconds() + kRestartMilliseconds / 10;
  std::string line = "nginx ended ";
  if (WIFSIGNALED(status)) Append(line, "by signal ", WTERMSIG(status));
  if (WIFEXITED(status)) Append(line, "with code ", WEXITSTATUS(status), "; see ", run_.NginxLog().string());
  log_.Write(line);
  return true;
}

}  // namespace kalvo::web
