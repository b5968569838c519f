#include "host/audit/event.h"

#include <iterator>

namespace kalvo::audit {
namespace {

struct EventRow {
  Event event;
  std::string_view name;
  std::optional<Event> intent;
};

// clang-format off
constexpr EventRow kEvents[] = {
// event                     name                 its intent
  {Event::ServerStarted,     "server-started",    {}},
  {Event::ServerStopped,     "server-stopped",    {}},
  {Event::SettingsReloaded,  "settings-reloaded", {}},
  {Event::UsersChanged,      "users-changed",     {}},
  {Event::PasswordChanged,   "password-changed",  {}},
  {Event::SignedIn,          "signed-in",         {}},
  {Event::SignInRefused,     "sign-in-refused",   {}},
  {Event::SignedOut,         "signed-out",        {}},
  {Event::RightRefused,      "right-refused",     {}},
  {Event::ValueRefused,      "value-refused",     {}},
  {Event::RequestRefused,    "request-refused",   {}},
  {Event::DeleteIntended,    "delete-intended",   {}},
  {Event::Deleted,           "deleted",           Event::DeleteIntended},
  {Event::DeleteFailed,      "delete-failed",     Event::DeleteIntended},
  {Event::RestoreIntended,   "restore-intended",  {}},
  {Event::Restored,          "restored",          Event::RestoreIntended},
  {Event::RestoreFailed,     "restore-failed",    Event::RestoreIntended},
  {Event::Exported,          "exported",          {}},
  {Event::LogContinued,      "log-continued",     {}},
  {Event::LineTorn,          "line-torn",         {}},
};
// clang-format on

constexpr bool StandInOrder() {
  for (std::size_t i = 0; i < std::size(kEvents); ++i) {
    if (static_cast<std::size_t>(kEvents[i].event) != i) return false;
  }
  return true;
}
static_assert(StandInOrder());

}  // namespace

std::string_view NameOf(Event event) { return kEvents[static_cast<std::size_t>(event)].name; }

std::optional<Event> EventNamed(std::string_view name) {
  for (const EventRow& row : kEvents) {
    if (row.name == name) return row.event;
  }
  return std::nullopt;
}

std::vector<std::string_view> EventNames() {
  std::vector<std::string_view> names;
  for (const EventRow& row : kEvents) names.push_back(row.name);
  return names;
}

std::optional<Event> IntentOf(Event outcome) { return kEvents[static_cast<std::size_t>(outcome)].intent; }

}  // namespace kalvo::audit
