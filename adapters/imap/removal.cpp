#include "adapters/imap/removal.h"

#include "adapters/imap/imap_error.h"
#include "adapters/imap/listed_folder.h"
#include "adapters/mail/errors.h"

namespace kalvo::imap {

bool Removal::IsThere(Connection& connection) const {
  const auto state = OpenListed(connection, folder_, Access::Write);
  return state && state->uidValidity == number_.uidValidity && connection.Exists(number_.uid);
}

WholeMessage Removal::Read(Connection& connection) const {
  CheckAllowed(connection);
  if (!IsThere(connection)) throw mail::NoSuchMessage();
  return connection.FetchWhole(number_.uid);
}

void Removal::Run(Connection& connection) {
  CheckAllowed(connection);
  if (!IsThere(connection)) {
    if (expunging_) return;
    throw mail::NoSuchMessage();
  }
  connection.Mark(number_.uid, kDeleted, true);
  expunging_ = true;
  connection.Expunge(number_.uid);
  if (!connection.Exists(number_.uid)) return;
  connection.Mark(number_.uid, kDeleted, false);
  throw mail::StoreFailed("The mail server did not delete the message.");
}

// Without the right, servers answer that they have marked a message, and mark nothing.
void Removal::CheckAllowed(Connection& connection) const {
  if (!connection.Has("UIDPLUS")) {
    throw mail::StoreFailed("The mail server cannot delete a single message: it has no UIDPLUS.");
  }
  std::optional<std::string> rights;
  try {
    rights = connection.Rights(folder_);
  } catch (const ImapError& error) {
    if (error.What() != Fault::Refused) throw;
    throw expunging_ ? mail::NoSuchMessage() : mail::NoSuchFolder("The folder does not exist or may not be seen.");
  }
  if (!rights) return;
  // "d" is what servers of the older standard say for both.
  const auto has = [&](char right) { return rights->find(right) != std::string::npos; };
  if ((has('t') && has('e')) || (!has('t') && !has('e') && has('d'))) return;
  throw mail::StoreFailed("Deleting messages is not allowed in this folder.");
}

}  // namespace kalvo::imap
