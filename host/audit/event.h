#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace kalvo::audit {

// What a line of the audit log tells.
enum class Event {
  ServerStarted,
  ServerStopped,
  SettingsReloaded,
  UsersChanged,
  PasswordChanged,
  SignedIn,
  SignInRefused,
  SignedOut,
  RightRefused,
  ValueRefused,
  RequestRefused,
  DeleteIntended,
  Deleted,
  DeleteFailed,
  RestoreIntended,
  Restored,
  RestoreFailed,
  Exported,
  LogContinued,
  LineTorn,
};

// "signed-in": the event as lines and filters name it.
std::string_view NameOf(Event event);
std::optional<Event> EventNamed(std::string_view name);
std::vector<std::string_view> EventNames();

// For an outcome, the intent that was written before it; nothing for any other event.
std::optional<Event> IntentOf(Event outcome);

}  // namespace kalvo::audit
