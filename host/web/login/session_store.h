#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/file.h"
#include "host/parts/session_driller.h"
#include "host/script/page/page_session.h"
#include "host/web/login/kept_folder.h"
#include "host/web/login/session_values.h"
#include "host/web/login/users.h"
#include "host/web/login/waiting_room.h"

namespace kalvo::web {
class Log;
}

namespace kalvo::web::login {

struct Lifetimes {
  std::int64_t idle = 30 * 60;          // seconds without a request
  std::int64_t longest = 12 * 60 * 60;  // seconds since the sign-in
  int mostOfAUser = 5;                  // sessions; one more ends her oldest
};

// How requests wait for a session that another page holds.
struct Waiting {
  int seats = 1;                     // how many may wait at a time, for whatever session; pages of workers that
                                     // are about to be replaced hold sessions too
  std::function<bool()> isWanted{};  // false: whoever waits has gone; empty: nobody goes
};

// A session that a request holds: nobody else reads or writes it until this object goes. What changed is kept then.
class FileSession : public host::PageSession {
 public:
  ~FileSession() override;
  FileSession(const FileSession&) = delete;
  FileSession& operator=(const FileSession&) = delete;

  const std::string& Account() const { return account_; }

  // A name for the session from which its identifier cannot be found out.
  std::string Mark() const { return path_.stem().string(); }

  // Whether the user is still the one who signed in, with the rights she had.
  bool BelongsTo(const User& user) const;

  Value Get(std::string_view name) override { return values_.Get(name); }
  void Set(std::string_view name, const Value& value) override;
  std::vector<std::string> Names() override { return values_.Names(); }
  std::string Id() override { return Mark(); }
  void Abandon() override { abandoned_ = true; }
  std::shared_ptr<LiveContainer> LiveDriller() override { return driller_.Of(account_); }

 private:
  friend class SessionStore;
  FileSession(base::File file, std::filesystem::path path, const host::LiveDrillerMaker& makeDriller, const Log& log)
      : file_(std::move(file)), path_(std::move(path)), driller_(makeDriller), log_(log) {}

  bool Read();
  void Keep();
  bool Replace() const;
  std::string Content() const;

  base::File file_;  // locked
  std::filesystem::path path_;
  host::SessionDriller driller_;
  const Log& log_;
  std::string account_, stamp_;
  std::int64_t created_ = 0;  // seconds since 1970
  SessionValues values_;
  bool changed_ = false, abandoned_ = false;
};

// Thrown when another page of the session kept it longer than somebody would wait, or nobody more may wait.
struct SessionBusy {};

// Sessions as files of one private folder, shared by all processes that serve the site. A file is named after its
// session's fingerprint: who reads the folder's names can take over none of them.
class SessionStore {
 public:
  // Makes the folder. The maker and the log outlive the store. Fails with SettingError.
  SessionStore(std::filesystem::path folder, const Lifetimes& lifetimes, const host::LiveDrillerMaker& makeDriller,
               const Log& log, Waiting waiting = {});

  // Begins a session for a user, with her rights as session values, and answers its identifier: one that nobody
  // had before. Drops what has expired, the sessions that it replaces, and of her sessions the oldest when there are
  // too many. Throws NotKept, and the others are unharmed then.
  std::string Create(const User& user, const std::vector<std::string>& replaced = {});

  // The session, held; null when there is none or it has expired. Any text may be asked for. Throws SessionBusy.
  std::unique_ptr<FileSession> Open(std::string_view id, std::chrono::milliseconds patience);

  // The one session of a user whom a proxy names, held; begun where there is none, or it has expired, or was begun
  // with other rights. No identifier leads to it. Throws SessionBusy and NotKept.
  std::unique_ptr<FileSession> OpenProxied(const User& user, std::chrono::milliseconds patience);

  // Ends a session at once, also one that a page holds: what that page changes in it is not kept. Answers whose it was;
  // "" where there was none.
  std::string EndOne(std::string_view id) const;

  // Ends the sessions of one account, or all for "", and answers how many there were. A page that runs comes to its
  // end; its session does not come back.
  static int End(const std::filesystem::path& folder, std::string_view account);

 private:
  using Clock = std::chrono::steady_clock;

  std::filesystem::path PathOf(std::string_view id) const;
  std::unique_ptr<FileSession> OpenAt(const std::filesystem::path& path, std::chrono::milliseconds patience);
  void WriteFresh(const std::filesystem::path& path, const User& user) const;
  void AwaitLock(const base::File& file, const std::filesystem::path& path, Clock::time_point until,
                 std::unique_ptr<WaitingRoom::Seat>& seat) const;
  bool HasExpired(const FileSession& session) const;
  void EndOldest(std::string_view account, const std::filesystem::path& fresh) const;

  std::filesystem::path folder_;
  Lifetimes lifetimes_;
  const host::LiveDrillerMaker& makeDriller_;
  const Log& log_;
  Waiting waiting_;
  WaitingRoom room_;
};

}  // namespace kalvo::web::login
