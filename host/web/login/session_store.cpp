#include "host/web/login/session_store.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <thread>

#include "host/parts/setting_error.h"
#include "host/web/log.h"
#include "host/web/login/password.h"
#include "platform/append.h"
#include "platform/conversion.h"
#include "platform/live_mailbox.h"

namespace kalvo::web::login {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kMagic = "kalvo session 1\n";
constexpr std::size_t kLargestFile = kLargestSession + 4096;
constexpr std::string_view kFileEnd = ".session";
constexpr std::chrono::milliseconds kBeat{10};

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
  if (end == std::string_view::npos) return std::nullopt;
  std::string line(text.substr(0, end));
  text.remove_prefix(end + 1);
  return line;
}

bool WriteWhole(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(file, text.data(), text.size());
    if (written < 0) return false;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

// Whether the path still names the file that is open: it does not once the session was rewritten or dropped.
bool IsStillThere(int file, const fs::path& path) {
  struct stat open {
  }, named{};
  return fstat(file, &open) == 0 && lstat(path.c_str(), &named) == 0 && open.st_ino == named.st_ino &&
         open.st_dev == named.st_dev;
}

}  // namespace

// ---- one session ----------------------------------------------------------------------------------------

FileSession::~FileSession() {
  if (abandoned_) {
    unlink(path_.c_str());
  } else {
    Keep();
  }
  close(file_);  // lets the next page have it
}

bool FileSession::BelongsTo(const User& user) const {
  return EqualsIgnoringCase(user.account, account_) && user.Stamp() == stamp_;
}

void FileSession::Set(std::string_view name, const Value& value) {
  values_.Set(name, value);
  changed_ = true;
}

std::shared_ptr<LiveContainer> FileSession::LiveDriller() {
  if (!driller_ && makeDriller_) driller_ = makeDriller_();
  return driller_;
}

bool FileSession::Read() {
  std::string content(kLargestFile, '\0');
  const ssize_t size = pread(file_, content.data(), content.size(), 0);
  if (size < 0) return false;
  std::string_view rest(content.data(), static_cast<std::size_t>(size));
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
    futimens(file_, nullptr);
    return;
  }
  const fs::path fresh = path_.string() + ".new";
  const int file = open(fresh.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC | O_NOFOLLOW, 0600);
  const bool written = file >= 0 && WriteWhole(file, Content());
  const bool kept = written && rename(fresh.c_str(), path_.c_str()) == 0;
  if (!kept) log_.Write(std::string("a session was not kept: ") + std::strerror(errno));
  if (file >= 0) close(file);
}

// ---- all sessions ---------------------------------------------------------------------------------------

SessionStore::SessionStore(fs::path folder, const Lifetimes& lifetimes, const host::LiveDrillerMaker& makeDriller,
                           const Log& log)
    : folder_(std::move(folder)), lifetimes_(lifetimes), makeDriller_(makeDriller), log_(log) {
  std::error_code failed;
  fs::create_directories(folder_, failed);
  if (!failed) fs::permissions(folder_, fs::perms::owner_all, failed);
  if (failed)
    throw host::SettingError("sessions: " + folder_.string() + " cannot be a folder of ours: " + failed.message());
}

fs::path SessionStore::PathOf(std::string_view id) const { return folder_ / (Fingerprint(id) + std::string(kFileEnd)); }

std::string SessionStore::Create(const User& user) {
  Sweep();
  const std::string id = NewToken();
  const fs::path path = PathOf(id);
  const int file = open(path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0600);
  if (file < 0 || flock(file, LOCK_EX) != 0) {
    if (file >= 0) close(file);
    throw host::SettingError("a session cannot be made in " + folder_.string() + ": " + std::strerror(errno));
  }
  FileSession session(file, path, makeDriller_, log_);
  session.account_ = user.account;
  session.stamp_ = user.Stamp();
  session.created_ = Now();
  for (const RightValue& right : kRightValues) {
    if (user.*right.flag) session.values_.Set(right.name, Value(std::string("Yes")));
  }
  session.changed_ = true;
  return id;
}

std::unique_ptr<FileSession> SessionStore::Open(std::string_view id, std::chrono::milliseconds patience) {
  if (!IsToken(id)) return nullptr;
  const fs::path path = PathOf(id);
  const auto until = std::chrono::steady_clock::now() + patience;
  for (;;) {
    const int file = open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
    if (file < 0) return nullptr;
    while (flock(file, LOCK_EX | LOCK_NB) != 0) {
      if (std::chrono::steady_clock::now() >= until) {
        close(file);
        throw SessionBusy();
      }
      std::this_thread::sleep_for(kBeat);
    }
    if (!IsStillThere(file, path)) {
      close(file);
      continue;
    }
    std::unique_ptr<FileSession> session(new FileSession(file, path, makeDriller_, log_));
    if (session->Read() && !HasExpired(*session)) return session;
    session->Abandon();
    return nullptr;
  }
}

bool SessionStore::HasExpired(const FileSession& session) const {
  struct stat state {};
  if (fstat(session.file_, &state) != 0) return true;
  const std::int64_t now = Now();
  return now - state.st_mtime > lifetimes_.idle || now - session.created_ > lifetimes_.longest;
}

// Whoever is idle too long is gone, whether or not the browser ever asks again.
void SessionStore::Sweep() const {
  std::error_code failed;
  for (const auto& entry : fs::directory_iterator(folder_, failed)) {
    struct stat state {};
    if (lstat(entry.path().c_str(), &state) != 0 || !S_ISREG(state.st_mode)) continue;
    if (Now() - state.st_mtime > lifetimes_.idle) unlink(entry.path().c_str());
  }
}

}  // namespace kalvo::web::login
