#include "adapters/imap/imap_holding.h"

#include <algorithm>
#include <ctime>
#include <set>
#include <thread>
#include <tuple>
#include <utility>

#include "adapters/imap/held_copy.h"
#include "adapters/imap/imap_error.h"
#include "adapters/imap/message_source.h"
#include "adapters/mail/errors.h"
#include "adapters/mail/shown_text.h"
#include "kalvo/platform/append.h"

namespace kalvo::imap {

namespace {

// A delete that takes longer is not running any more.
constexpr std::int64_t kStoppedAfter = 3600;  // seconds

constexpr std::chrono::milliseconds kBeat{200};

bool IsSameOrigin(const mail::HeldMessage& a, const mail::HeldMessage& b) {
  const auto origin = [](const mail::HeldMessage& held) {
    return std::tie(held.server, held.mailbox, held.folderKey, held.name);
  };
  return origin(a) == origin(b);
}

void RemoveCopy(Connection& connection, std::uint32_t uid) {
  connection.Mark(uid, kDeleted, true);
  connection.Expunge(uid);
}

// The folder that whoever restores a message makes first: of all who try, a server lets one.
std::string ClaimOf(const std::string& folder, std::string_view id) {
  return Built([&](std::string& out) { Append(out, folder, " ", id); });
}

bool Claim(Connection& connection, const std::string& claim) {
  try {
    connection.Create(claim);
    return true;
  } catch (const ImapError& error) {
    if (error.What() != Fault::Refused) throw;
    return false;
  }
}

void Unclaim(Connection& connection, const std::string& claim) {
  try {
    connection.DeleteFolder(claim);
  } catch (const ImapError& error) {
    if (error.What() != Fault::Refused) throw;
  }
}

}  // namespace

std::string Holding::FolderName(Connection& connection) const {
  return connection.PersonalPrefix() + mail::ToModifiedUtf7(pool_.Config().holdingFolder);
}

bool Holding::IsIt(Connection& connection, const std::string& user, std::string_view folder) const {
  return user == pool_.Config().HoldingLogin() && folder.starts_with(FolderName(connection));
}

// Runs a step with the folder open, on a connection of its own; nothing where there is no folder yet. It is not
// repeated when the connection is lost: it changes things.
template <typename Step>
auto Holding::InFolder(const std::string& server, Step&& step) {
  return pool_.WithOwnOnce(server, pool_.Config().HoldingLogin(), [&](Connection& connection) {
    const std::string folder = FolderName(connection);
    using Result = decltype(step(connection, folder));
    if (connection.List(folder, folder).empty()) return Result();
    connection.Open(folder, Access::Write);
    return step(connection, folder);
  });
}

void Holding::Put(const mail::HeldMessage& held, const WholeMessage& message) {
  WholeMessage copy{HeldLines(held, key_) + message.text, std::string(kUnfinished), message.received};
  try {
    pool_.WithOwnOnce(held.server, pool_.Config().HoldingLogin(), [&](Connection& connection) {
      const std::string folder = FolderName(connection);
      if (connection.List(folder, folder).empty()) connection.Create(folder);
      const std::uint32_t uid = connection.Put(folder, copy);
      connection.Open(folder, Access::Write);
      if (uid != 0 && connection.FetchWhole(uid).text == copy.text) return;
      if (uid != 0) RemoveCopy(connection, uid);
      throw mail::StoreFailed("What the holding folder keeps differs from the message.");
    });
  } catch (const Error& error) {
    throw mail::StoreFailed("The message was not deleted, because it cannot be held. " + error.Description());
  }
}

void Holding::Finish(const mail::HeldMessage& held) {
  InFolder(held.server, [&](Connection& connection, const std::string&) {
    for (const HeldCopy& copy : connection.HeldCopies(key_)) {
      if (copy.message.id == held.id) connection.Mark(copy.uid, kUnfinished, false);
    }
    return true;
  });
}

void Holding::Drop(const mail::HeldMessage& held) { Remove(held, Copies::This); }

void Holding::Remove(const mail::HeldMessage& held, Copies which) {
  InFolder(held.server, [&](Connection& connection, const std::string& folder) {
    for (const HeldCopy& copy : connection.HeldCopies(key_)) {
      const bool isOne =
          copy.message.id == held.id || (which == Copies::OfTheMessage && IsSameOrigin(copy.message, held));
      if (isOne) RemoveCopy(connection, copy.uid);
    }
    if (which == Copies::OfTheMessage) Unclaim(connection, ClaimOf(folder, held.id));
    return true;
  });
}

std::vector<mail::HeldMessage> Holding::Held(const std::string& server) {
  auto copies =
      InFolder(server, [&](Connection& connection, const std::string&) { return connection.HeldCopies(key_); });
  std::vector<mail::HeldMessage> held;
  for (HeldCopy& copy : copies) {
    const bool isKnown = std::any_of(held.begin(), held.end(),
                                     [&](const mail::HeldMessage& other) { return IsSameOrigin(other, copy.message); });
    if (isKnown || (copy.isUnfinished && HasOriginal(copy.message))) continue;
    held.push_back(std::move(copy.message));
  }
  return held;
}

bool Holding::HasOriginal(const mail::HeldMessage& held) {
  const auto number = ReadMessageKey(held.name);
  if (!number) return false;
  return pool_.With(held.server, pool_.Config().LoginOf(held.mailbox), [&](Connection& connection) {
    try {
      return connection.Open(held.folderKey, Access::Read).uidValidity == number->uidValidity &&
             connection.Exists(number->uid);
    } catch (const ImapError& error) {
      if (error.What() != Fault::Refused) throw;
      return false;  // the folder is gone, and all that was in it
    }
  });
}

bool Holding::Restore(const mail::HeldMessage& held, const std::string& folder) {
  WholeMessage message;
  bool wasBegun = false;
  const bool found = InFolder(held.server, [&](Connection& connection, const std::string& folderOfOurs) {
    for (const HeldCopy& copy : connection.HeldCopies(key_)) {
      if (copy.message.id != held.id) continue;
      wasBegun = !Claim(connection, ClaimOf(folderOfOurs, held.id));
      message = connection.FetchWhole(copy.uid);
      return true;
    }
    return false;
  });
  if (!found || (wasBegun && !WaitForAnother(held))) return false;
  message.text.erase(0, HeldLinesLength(message.text));
  message.flags = held.flags;
  message.received = held.received;
  if (!wasBegun || !IsThereAlready(held, folder, message)) {
    try {
      pool_.WithOwnOnce(held.server, pool_.Config().LoginOf(held.mailbox),
                        [&](Connection& connection) { connection.Put(folder, message); });
    } catch (const ImapError& error) {
      if (error.What() == Fault::Refused) GiveUp(held);  // it surely is not there
      throw;
    }
  }
  Remove(held, Copies::OfTheMessage);
  return true;
}

// The next one who restores the message need not wait for us.
void Holding::GiveUp(const mail::HeldMessage& held) {
  InFolder(held.server, [&](Connection& connection, const std::string& folder) {
    Unclaim(connection, ClaimOf(folder, held.id));
    return true;
  });
}

// Whoever began to restore the message may be at it right now. False when it is restored meanwhile; who was stopped
// never gets there.
bool Holding::WaitForAnother(const mail::HeldMessage& held) {
  const auto until = Deadline::Clock::now() + pool_.Config().limits.patience;
  while (Deadline::Clock::now() < until) {
    std::this_thread::sleep_for(kBeat);
    const bool isHeld = InFolder(held.server, [&](Connection& connection, const std::string&) {
      const auto copies = connection.HeldCopies(key_);
      return std::any_of(copies.begin(), copies.end(),
                         [&](const HeldCopy& copy) { return copy.message.id == held.id; });
    });
    if (!isHeld) return false;
  }
  return true;
}

// Whether a folder has a message of the same bytes and the same time of arrival.
bool Holding::IsThereAlready(const mail::HeldMessage& held, const std::string& folder, const WholeMessage& message) {
  return pool_.With(held.server, pool_.Config().LoginOf(held.mailbox), [&](Connection& connection) {
    connection.Open(folder, Access::Read);
    const auto uids = connection.AllUids();
    if (uids.empty()) return false;
    const auto [first, last] = std::minmax_element(uids.begin(), uids.end());
    std::vector<Summary> summaries;
    connection.FetchSummaries(*first, *last, Connection::Sizes::Yes, summaries);
    return std::any_of(summaries.begin(), summaries.end(), [&](const Summary& summary) {
      return summary.size == static_cast<std::int64_t>(message.text.size()) && summary.received == message.received &&
             connection.FetchWhole(summary.uid).text == message.text;
    });
  });
}

std::int32_t Holding::Sweep(const std::string& server, std::int64_t before) {
  const std::int64_t stoppedBefore = std::time(nullptr) - kStoppedAfter;
  auto copies =
      InFolder(server, [&](Connection& connection, const std::string&) { return connection.HeldCopies(key_); });
  std::set<std::string> past;
  std::int32_t swept = 0;
  for (const HeldCopy& copy : copies) {
    const bool isPast = copy.message.deletion.when < before;
    const bool mayBeStopped = copy.isUnfinished && copy.message.deletion.when < stoppedBefore;
    const bool hasOriginal = copy.isUnfinished && (isPast || mayBeStopped) && HasOriginal(copy.message);
    if (isPast || (mayBeStopped && hasOriginal)) past.insert(copy.message.id);
    if (isPast && !hasOriginal) ++swept;
  }
  InFolder(server, [&](Connection& connection, const std::string& folder) {
    std::set<std::string> claims;
    for (const Folder& claim : connection.List(folder + " %", folder + " ")) claims.insert(claim.name);
    for (const HeldCopy& copy : connection.HeldCopies(key_)) {
      if (past.contains(copy.message.id)) {
        RemoveCopy(connection, copy.uid);
      } else {
        claims.erase(ClaimOf(folder, copy.message.id));
      }
    }
    // Whoever made them was stopped when the message was restored already.
    for (const std::string& claim : claims) {
      if (mail::IsHeldId(std::string_view(claim).substr(folder.size() + 1))) Unclaim(connection, claim);
    }
    return true;
  });
  return swept;
}

}  // namespace kalvo::imap
