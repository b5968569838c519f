#pragma once

#include <functional>
#include <iosfwd>
#include <memory>

#include "host/audit/trail.h"
#include "host/web/log.h"
#include "host/web/run_folder.h"
#include "host/web/settings.h"

namespace kalvo::web {

class Nginx;
class WorkerPool;

// A running server: nginx and the workers, from start to stop. SIGTERM and SIGINT stop it, SIGHUP has it read its
// settings and pages again while it serves, SIGUSR1 has it reopen its log.
class Supervisor {
 public:
  using Load = std::function<Settings()>;  // reads the settings, complete; fails with SettingError

  explicit Supervisor(Load load);
  ~Supervisor();
  Supervisor(const Supervisor&) = delete;
  Supervisor& operator=(const Supervisor&) = delete;

  // Serves until it is told to stop. Once it listens it writes the site's address to `out`. Fails with
  // SettingError when it cannot start.
  void Run(std::ostream& out);

 private:
  enum class Wish { None, Stop };

  void Start(std::ostream& out);
  void WriteConfiguration(const Settings& settings);
  Wish Attend(int milliseconds);
  void Reload();
  void ReopenLogs();
  void Reap();
  void NoteUsers();
  void Stop();

  Load load_;
  Settings settings_;
  Log log_;
  RunFolder run_;
  audit::Trail trail_;
  bool hasTerminal_;
  std::string users_;  // what told the users file from another one when it was last looked at
  base::File signals_, socket_;
  std::unique_ptr<WorkerPool> pool_;
  std::unique_ptr<Nginx> nginx_;
};

}  // namespace kalvo::web
