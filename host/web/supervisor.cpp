#include "host/web/supervisor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <ostream>

#include "base/steady_clock.h"
#include "host/parts/setting_error.h"
#include "host/web/address.h"
#include "host/web/error_pages.h"
#include "host/web/generation.h"
#include "host/web/listening.h"
#include "host/web/nginx.h"
#include "host/web/nginx_config.h"
#include "host/web/worker.h"
#include "host/web/worker_pool.h"
#include "kalvo/platform/append.h"

namespace kalvo::web {
namespace {

constexpr int kBeatMilliseconds = 100;     // how often the workers are looked after
constexpr int kStopMilliseconds = 5000;    // for what is still running when the server is told to stop
constexpr int kWorkerMilliseconds = 2000;  // for workers to go, once nobody asks them

bool HasTerminal() { return static_cast<bool>(base::Open("/dev/tty", O_RDONLY)); }

base::File OpenSignals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : {SIGCHLD, SIGHUP, SIGINT, SIGTERM, SIGUSR1}) sigaddset(&set, signal);
  sigprocmask(SIG_BLOCK, &set, nullptr);
  return base::File(signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
}

}  // namespace

Supervisor::Supervisor(Load load)
    : load_(std::move(load)),
      settings_(load_()),
      log_(settings_.log),
      run_(settings_.run),
      trail_(settings_.audit, [this](std::string_view line) { log_.Write(line); }),
      hasTerminal_(HasTerminal()) {}

Supervisor::~Supervisor() = default;

void Supervisor::Run(std::ostream& out) {
  try {
    Start(out);
    while (Attend(kBeatMilliseconds) != Wish::Stop) {
      pool_->Keep();
      NoteUsers();
      if (!nginx_) continue;
      nginx_->Keep();
      nginx_->BoundLog();
    }
  } catch (...) {
    Stop();
    throw;
  }
  Stop();
}

void Supervisor::Start(std::ostream& out) {
  if (!settings_.External()) CheckAddressIsFree(settings_.listen);
  if (geteuid() == 0 && settings_.user.empty()) {
    log_.Write("running as root: workers keep its id and lose every capability; user = \"NAME\" is safer");
  }
  const auto generation = std::make_shared<Generation>(settings_, log_, trail_);
  signals_ = OpenSignals();
  WriteConfiguration(settings_);
  socket_ = ListenForNginx(run_.Socket(), settings_.queue);
  if (geteuid() == 0 && generation->identity) run_.Show(*generation->identity);
  const auto live = [this](Generation& current, WorkerSlot& slot, pid_t parent) {
    return Worker(current, run_.Errors(), log_, slot).Run(socket_.Handle(), parent);
  };
  pool_ = std::make_unique<WorkerPool>(live, log_);
  pool_->Use(generation);
  trail_.Note(audit::Event::ServerStarted, {}, {{"site", settings_.site.string()}});
  if (settings_.External()) {
    out << "Serving " << settings_.site.string() << "; include " << run_.NginxSite().string()
        << " in a server block of nginx" << std::endl;
    return;
  }
  nginx_ = std::make_unique<Nginx>(settings_.nginx, run_, log_);
  nginx_->Owns(settings_.proxySocket);
  nginx_->Start();
  const Address address = *ParseAddress(settings_.listen);
  const std::string& host = IsEveryAddress(address) ? settings_.hosts.front() : address.host;
  out << "Serving " << settings_.site.string() << " until Ctrl-C at\n"
      << (settings_.Encrypts() ? "https://" : "http://") << host << ':' << address.port << "/KalvoforExchange/"
      << std::endl;
}

void Supervisor::WriteConfiguration(const Settings& settings) {
  WriteErrorPages(run_.Errors(), settings.errorPages);
  WriteFile(run_.NginxSite(), NginxSite(settings, run_));
  if (!settings.External()) WriteFile(run_.NginxConfig(), NginxConfig(settings, run_));
}

// Waits for signals and answers them.
Supervisor::Wish Supervisor::Attend(int milliseconds) {
  pollfd waiting{signals_.Handle(), POLLIN, 0};
  poll(&waiting, 1, milliseconds);
  signalfd_siginfo info{};
  Wish wish = Wish::None;
  while (read(signals_.Handle(), &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
    switch (info.ssi_signo) {
      case SIGTERM:
      case SIGINT: wish = Wish::Stop; break;
      case SIGHUP:
        // A terminal that was closed hangs up too.
        if (hasTerminal_ && !HasTerminal()) {
          wish = Wish::Stop;
        } else {
          Reload();
        }
        break;
      case SIGUSR1: ReopenLogs(); break;
      default: break;
    }
  }
  Reap();
  return wish;
}

// Whatever is wrong with the new settings, the old ones go on serving.
void Supervisor::Reload() {
  try {
    Settings fresh = load_();
    if (fresh.run != settings_.run || fresh.web != settings_.web || fresh.log != settings_.log ||
        fresh.audit != settings_.audit || fresh.user != settings_.user) {
      throw host::SettingError("run, web, log, audit and user change only with a restart");
    }
    if (!fresh.External() && fresh.listen != settings_.listen) CheckAddressIsFree(fresh.listen);
    const auto generation = std::make_shared<Generation>(fresh, log_, trail_);
    WriteConfiguration(fresh);
    settings_ = fresh;
    ChangeQueue(socket_.Handle(), settings_.queue);
    pool_->Use(generation);
    if (nginx_) {
      nginx_->Owns(settings_.proxySocket);
      nginx_->Reload();
    }
    log_.Write("reloaded");
    trail_.Note(audit::Event::SettingsReloaded, {}, {});
  } catch (const std::exception& error) {
    log_.Write(std::string("not reloaded: ") + error.what());
  }
}

// Whoever changed the users file, by whatever program, the audit log has that it was changed.
void Supervisor::NoteUsers() {
  if (settings_.users.empty()) return;
  struct stat state {};
  if (stat(settings_.users.c_str(), &state) != 0) return;
  std::string seen;
  Append(seen, state.st_ino, ' ', state.st_size, ' ', state.st_mtim.tv_sec, ' ', state.st_mtim.tv_nsec);
  if (seen == users_) return;
  const bool first = users_.empty();
  users_ = std::move(seen);
  if (!first) trail_.Note(audit::Event::UsersChanged, {}, {{"file", settings_.users.string()}});
}

void Supervisor::ReopenLogs() {
  try {
    log_.Reopen();
  } catch (const host::SettingError& error) {
    log_.Write(std::string("the log goes on where it was: ") + error.what());
  }
  pool_->Renew();
  if (nginx_) nginx_->ReopenLog();
}

void Supervisor::Reap() {
  int status = 0;
  for (pid_t child; (child = waitpid(-1, &status, WNOHANG)) > 0;) {
    if (!pool_->Ended(child, status) && nginx_) nginx_->Ended(child, status);
  }
}

// First nobody new is let in, then the workers go; who does not go in time is ended. A second signal ends all.
void Supervisor::Stop() {
  if (!pool_) return;
  const auto wait = [this](int milliseconds, auto&& isOver) {
    const std::int64_t until = base::Milliseconds() + milliseconds;
    while (!isOver() && base::Milliseconds() < until) {
      if (Attend(kBeatMilliseconds) == Wish::Stop) break;
    }
  };
  if (nginx_) {
    nginx_->Quit();
    wait(kStopMilliseconds, [this] { return !nginx_->Running(); });
    nginx_->Kill();
  }
  pool_->Retire();
  wait(kWorkerMilliseconds, [this] { return pool_->Empty(); });
  pool_->KillAll();
  while (!pool_->Empty() || (nginx_ && nginx_->Running())) Attend(kBeatMilliseconds);
  unlink(run_.Socket().c_str());
  trail_.Note(audit::Event::ServerStopped, {}, {});
}

}  // namespace kalvo::web
