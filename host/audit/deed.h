#pragma once

#include <exception>
#include <string>

#include "host/audit/trail.h"
#include "kalvo/platform/error.h"

namespace kalvo::audit {

// The three lines of something that is done to a message.
struct Deed {
  Event intent, done, failed;
  const char* undone;  // what to say of it when the intent cannot be written: "nothing was deleted"
};

inline constexpr Deed kDelete{Event::DeleteIntended, Event::Deleted, Event::DeleteFailed, "nothing was deleted"};
inline constexpr Deed kRestore{Event::RestoreIntended, Event::Restored, Event::RestoreFailed, "nothing was restored"};

// Writes the intent, does it, and writes the outcome. Without the intent on the disk nothing is done, and an `Error`
// says so; an `Error` of what is done goes up when its outcome has been written. `act` may answer a detail of the
// outcome.
template <typename Act>
void Recorded(Trail& trail, const Deed& deed, const Visitor& visitor, const Details& details, Act&& act) {
  std::int64_t intent = 0;
  try {
    intent = trail.Write(deed.intent, visitor, details);
  } catch (const std::exception& error) {
    throw Error(codes::kFailed,
                InDescription(std::string("It could not be written down, so ") + deed.undone + ": " + error.what()));
  }
  Details outcome = {{"intent", std::to_string(intent)}};
  try {
    act(outcome);
  } catch (const Error& error) {
    outcome.emplace_back("reason", error.Description());
    trail.Note(deed.failed, visitor, outcome);
    throw;
  }
  trail.Note(deed.done, visitor, outcome);
}

}  // namespace kalvo::audit
