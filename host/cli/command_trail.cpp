#include "host/cli/command_trail.h"

#include <pwd.h>
#include <unistd.h>

#include "host/web/settings.h"

namespace kalvo::host {

CommandTrail::CommandTrail(const web::Settings& settings)
    : trail_(settings.audit, [this](std::string_view line) {
        if (log_) log_->Write(line);
      }) {
  if (settings.log != "-") log_.emplace(settings.log);
}

audit::Visitor CommandTrail::Caller() {
  const passwd* user = getpwuid(getuid());
  return {user ? user->pw_name : std::to_string(getuid()), ""};
}

}  // namespace kalvo::host
