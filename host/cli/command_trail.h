#pragma once

#include <optional>

#include "host/audit/trail.h"
#include "host/web/log.h"

namespace kalvo::web {
struct Settings;
}

namespace kalvo::host {

// The audit log of a server's settings, as a command writes it beside the server: the hashes go to the server's log,
// where that is a file.
class CommandTrail {
 public:
  // The settings' folders are complete. Fails with SettingError.
  explicit CommandTrail(const web::Settings& settings);

  audit::Trail& Get() { return trail_; }

  // Whoever runs the command, by her account on this machine.
  static audit::Visitor Caller();

 private:
  std::optional<web::Log> log_;
  audit::Trail trail_;
};

}  // namespace kalvo::host
