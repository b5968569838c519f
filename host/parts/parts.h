#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "adapters/ranking/make_ranking.h"
#include "host/parts/memory_session.h"
#include "host/parts/places.h"
#include "host/parts/system_clock.h"
#include "host/script/engine/limits.h"
#include "kalvo/platform/locale.h"
#include "kalvo/platform/platform.h"

namespace kalvo::mail {
class MailStore;
}

namespace kalvo::host {

// Where the parts are, in the words of the command line and of the settings.
struct PartsSettings {
  std::string database{kOdbc};  // "sqlite:FILE" or "odbc"
  std::string mail{};           // "maildir:DIR", "imap://HOST:PORT", or "" for no mailboxes
  std::string locale{kEnglishUnitedStates.name};
  double timeLimit = PageLimits{}.seconds;  // seconds that one statement may take
  int topNRows = ranking::kRankedRows;      // how many rows a Top-N has
  int topNOldDays = ranking::kOldDays;      // from how many days on a message is old
  bool unknownEngine = false;               // whether a database is taken that nothing here keeps from being written
  bool proveDatabase = false;               // whether the database is proved to read only when it first opens
};

// What the parts ask and tell of whoever runs them; each may be empty.
struct PartsWatcher {
  // Asked several times a second while a statement runs, on whatever thread; false ends the statement.
  std::function<bool()> isWanted{};
  // Told why the database cannot be opened.
  std::function<void(std::string_view)> tell{};
};

// The outside of one process. Made once by the command that runs, it owns the parts and hands them down by
// reference; nothing is connected before a page asks for it.
class Parts {
 public:
  // Fails with SettingError.
  explicit Parts(const PartsSettings& settings, const PartsWatcher& watcher = {});
  ~Parts();
  Parts(const Parts&) = delete;
  Parts& operator=(const Parts&) = delete;

  const Platform& GetPlatform() const { return platform_; }

  // The mail store, for those who delete, undo and sweep; null when mailboxes are not configured.
  const std::shared_ptr<mail::MailStore>& GetMailStore() const { return mail_; }

  // Makes a session's browsing object; empty when mailboxes are not configured.
  const LiveDrillerMaker& GetLiveDrillerMaker() const { return makeDriller_; }

 private:
  const Locale& locale_;
  std::unique_ptr<Database> database_;
  std::unique_ptr<TopNFactory> ranking_;
  SystemClock clock_;
  Platform platform_;
  std::shared_ptr<mail::MailStore> mail_;
  LiveDrillerMaker makeDriller_;
};

}  // namespace kalvo::host
