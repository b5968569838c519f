#include "host/web/login/session_store.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <thread>
#include <tuple>
#include <vector>

#include "base/fresh_file.h"
#include "base/private_folder.h"
#include "host/parts/setting_error.h"
#include "host/web/log.h"
#include "host/web/login/kept_folder.h"
#include "host/web/login/password.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/live_mailbox.h"

namespace kalvo::web::login {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kMagic = "kalvo session 1\n";
constexpr std::size_t kLargestFile = kLargestSession + 4096;
constexpr std::size_t kLongestHead = 512;  // what tells whose it is
constexpr const char* kFileEnd = ".session";
constexpr std::chrono::milliseconds kBeat{10};
constexpr int kMostTries = 3;  // to begin a session that others begin at the same moment

// Names of the values by which pages know rights.
struct RightValue {
  const char* name;
  bool User::*flag;
};
constexpr RightValue kRightValues[] = {{"KalvoAdministrator", &User::administrator},
                                       {"KalvoDrillDownAuth", &User::drillDown}};

std::int64_t Now() { return static_cast<std::int64_t>(std::time(nullptr)); }

void AppendLine(std::string& out, std::string_view text) { Append(out, text, '\n'); }

// Takes a line off the text; nothing when it has no whole line.
std::optional<std::string> TakeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  if (end == std::string::npos) return std::nullopt;
  std::string line(text.substr(0, end));
  text.remove_prefix(end + 1);
  return line;
}

// Held while it is decided whether a session's file stays. Where it cannot be had, files go and stay without it.
class FolderLock {
 public:
  explicit FolderLock(const fs::path& folder) : folder_(base::Open(folder, O_RDONLY | O_DIRECTORY)) {
    if (folder_) flock(folder_.Handle(), LOCK_EX);
  }

 private:
  base::File folder_;
};

// Whose session a file holds, and since when.
struct Holder {
  fs::path path;
  std::string account;
  std::int64_t created = 0;
  timespec used{};

  auto Age() const { return std::tuple(created, used.tv_sec, used.tv_nsec); }
};

std::optional<Holder> HolderOf(const fs::path& path) {
  const base::File file = base::Open(path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
  const auto head = base::ReadPiece(file, kLongestHead);
  std::string_view rest = head ? *head : std::string_view();
  if (!rest.starts_with(kMagic)) return std::nullopt;
  rest.remove_prefix(kMagic.size());
  const auto account = TakeLine(rest), stamp = TakeLine(rest), created = TakeLine(rest);
  const auto seconds = created ? ParseNumber(*created) : std::nullopt;
  if (!seconds) return std::nullopt;
  return Holder{path, *account, static_cast<std::int64_t>(*seconds), base::StatusOf(file).st_mtim};
}

// The sessions of an account, or all for "".
std::vector<Holder> HoldersIn(const fs::path& folder, std::string_view account) {
  std::vector<Holder> found;
  std::error_code failed;
  for (const auto& entry : fs::directory_iterator(folder, failed)) {
    if (entry.path().extension() != kFileEnd) continue;
    auto holder = HolderOf(entry.path());
    if (holder && (account.empty() || EqualsIgnoringCase(holder->account, account))) found.push_back(*holder);
  }
  if (failed) throw host::SettingError("sessions: " + folder.string() + " cannot be read: " + failed.message());
  return found;
}

}  // namespace

// ---- one session ----------------------------------------------------------------------------------------

FileSession::~FileSession() {
  if (abandoned_) {
    unlink(path_.c_str());
  } else {
    Keep();
  }
}  // the file is closed, so the next page can have it

bool FileSession::BelongsTo(const User& user) const {
  return EqualsIgnoringCase(user.account, account_) && user.Stamp() == stamp_;
}

void FileSession::Set(std::string_view name, const Value& value) {
  values_.Set(name, value);
  changed_ = true;
}

bool FileSession::Read() {
  const auto content = base::ReadPiece(file_, kLargestFile);
  std::string_view rest = content ? *content : std::string_view();
  if (!rest.starts_with(kMagic)) return false;
  rest.remove_prefix(kMagic.size());
  const auto account = TakeLine(rest), stamp = TakeLine(rest), created = TakeLine(rest);
  auto values = created ? SessionValues::Unpacked(rest) : std::nullopt;
  const auto seconds = created ? ParseNumber(*created) : std::nullopt;
  if (!values || !seconds) return false;
  account_ = *account, stamp_ = *stamp, created_ = static_cast<std::int64_t>(*seconds), values_ = std::move(*values);
  return true;
}

std::string FileSession::Content() const {
  std::string content(kMagic);
  AppendLine(content, account_);
  AppendLine(content, stamp_);
  AppendLine(content, std::to_string(created_));
  return content + values_.Packed();
}

// A changed session replaces its file as a whole; any other is touched, so that it does not expire.
void FileSession::Keep() {
  if (!changed_) {
    futimens(file_.Handle(), nullptr);
  } else if (!Replace()) {
    log_.Write(std::string("a session was not kept: ") + std::strerror(errno));
  }
}

bool FileSession::Replace() const {
  base::FreshFile fresh(path_);
  if (!fresh.Write(Content())) return false;
  const FolderLock lock(path_.parent_path());
  // One that was ended meanwhile does not come back.
  return !base::IsStillThere(file_, path_) || fresh.TakePlace();
}

// ---- all sessions ---------------------------------------------------------------------------------------

SessionStore::SessionStore(fs::path folder, const Lifetimes& lifetimes, const host::LiveDrillerMaker& makeDriller,
                           const Log& log, Waiting waiting)
    : folder_(std::move(folder)),
      lifetimes_(lifetimes),
      makeDriller_(makeDriller),
      log_(log),
      waiting_(std::move(waiting)),
      room_((MakePrivateFolder("sessions", folder_), folder_ / "waiting"), waiting_.seats) {}

fs::path SessionStore::PathOf(std::string_view id) const { return folder_ / (Fingerprint(id) + kFileEnd); }

std::string SessionStore::Create(const User& user, const std::vector<std::string>& replaced) {
  // Whoever is idle too long is gone, whether or not the browser ever asks again.
  base::RemoveOlderThan(folder_, lifetimes_.idle);
  base::RemoveOlderThan(folder_ / "waiting", lifetimes_.longest);
  const std::string id = NewToken();
  const fs::path path = PathOf(id);
  WriteFresh(path, user);
  for (const std::string& old : replaced) EndOne(old);
  EndOldest(user.account, path);
  return id;
}

// The file of a session that begins, with the rights that the user has now.
void SessionStore::WriteFresh(const fs::path& path, const User& user) const {
  base::File file = base::Open(path, O_CREAT | O_EXCL | O_RDWR);
  if (!file) throw NotKept(path.string() + ": " + std::strerror(errno));
  FileSession session(std::move(file), path, makeDriller_, log_);
  session.account_ = user.account;
  session.stamp_ = user.Stamp();
  session.created_ = Now();
  for (const RightValue& right : kRightValues) {
    if (user.*right.flag) session.values_.Set(right.name, Value(std::string("Yes")));
  }
  if (base::WriteAll(session.file_, session.Content())) return;
  session.Abandon();
  throw NotKept(path.string() + ": " + std::strerror(errno));
}

// The one that has just begun stays, however many begin in the same second.
void SessionStore::EndOldest(std::string_view account, const fs::path& fresh) const {
  const FolderLock lock(folder_);
  std::vector<Holder> holders = HoldersIn(folder_, account);
  const auto isFresh = [&](const Holder& holder) { return holder.path == fresh; };
  if (std::erase_if(holders, isFresh) == 0) return;  // one that began meanwhile has ended it, and has counted
  std::sort(holders.begin(), holders.end(), [](const Holder& a, const Holder& b) { return a.Age() < b.Age(); });
  for (std::size_t i = 0; i + static_cast<std::size_t>(lifetimes_.mostOfAUser) <= holders.size(); ++i) {
    unlink(holders[i].path.c_str());
  }
}

int SessionStore::End(const fs::path& folder, std::string_view account) {
  const FolderLock lock(folder);
  const std::vector<Holder> holders = HoldersIn(folder, account);
  int ended = 0;
  for (const Holder& holder : holders) ended += unlink(holder.path.c_str()) == 0 ? 1 : 0;
  return ended;
}

// Takes the lock of a session's file, from a seat of the waiting room where another page has it. Throws SessionBusy.
void SessionStore::AwaitLock(const base::File& file, const fs::path& path, Clock::time_point until,
                             std::unique_ptr<WaitingRoom::Seat>& seat) const {
  if (flock(file.Handle(), LOCK_EX | LOCK_NB) == 0) return;
  if (!seat) seat = room_.Enter(path.filename().string());
  while (seat && Clock::now() < until && (!waiting_.isWanted || waiting_.isWanted())) {
    if (flock(file.Handle(), LOCK_EX | LOCK_NB) == 0) return;
    std::this_thread::sleep_for(kBeat);
  }
  throw SessionBusy();
}

std::unique_ptr<FileSession> SessionStore::Open(std::string_view id, std::chrono::milliseconds patience) {
  return IsToken(id) ? OpenAt(PathOf(id), patience) : nullptr;
}

// Its name has a part that no identifier's has. It is written aside, so that whoever else comes finds a whole one.
std::unique_ptr<FileSession> SessionStore::OpenProxied(const User& user, std::chrono::milliseconds patience) {
  const fs::path path = folder_ / ("proxied-" + Fingerprint(ToLower(user.account)) + kFileEnd);
  for (int tries = 0; tries < kMostTries; ++tries) {
    if (auto session = OpenAt(path, patience)) {
      if (session->BelongsTo(user)) return session;
      session->Abandon();
    }
    base::RemoveOlderThan(folder_, lifetimes_.idle);
    const fs::path fresh = folder_ / (NewToken() + ".new");
    WriteFresh(fresh, user);
    if (rename(fresh.c_str(), path.c_str()) != 0) throw NotKept(path.string() + ": " + std::strerror(errno));
  }
  throw SessionBusy();
}

std::unique_ptr<FileSession> SessionStore::OpenAt(const fs::path& path, std::chrono::milliseconds patience) {
  const auto until = Clock::now() + patience;
  std::unique_ptr<WaitingRoom::Seat> seat;
  for (;;) {
    base::File file = base::Open(path, O_RDWR | O_NOFOLLOW);
    if (!file) return nullptr;
    std::unique_ptr<FileSession> session(new FileSession(std::move(file), path, makeDriller_, log_));
    AwaitLock(session->file_, path, until, seat);
    if (!base::IsStillThere(session->file_, path)) continue;
    if (session->Read() && !HasExpired(*session)) return session;
    session->Abandon();
    return nullptr;
  }
}

std::string SessionStore::EndOne(std::string_view id) const {
  if (!IsToken(id)) return "";
  const FolderLock lock(folder_);
  const fs::path path = PathOf(id);
  const auto holder = HolderOf(path);
  return unlink(path.c_str()) == 0 && holder ? holder->account : "";
}

bool SessionStore::HasExpired(const FileSession& session) const {
  const std::int64_t now = Now();
  return now - base::StatusOf(session.file_).st_mtime > lifetimes_.idle || now - session.created_ > lifetimes_.longest;
}

}  // namespace kalvo::web::login
