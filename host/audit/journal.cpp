#include "host/audit/journal.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

#include "host/audit/audit_error.h"
#include "host/audit/log_files.h"
#include "host/parts/setting_error.h"
#include "kalvo/platform/append.h"

namespace kalvo::audit {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::seconds kPatience{5};  // for whoever else is writing
constexpr std::chrono::milliseconds kBeat{2};
constexpr int kAppending = O_RDWR | O_APPEND | O_CREAT;

// Pages show what failed, so it names no folder.
[[noreturn]] void Fail(const fs::path& path, const char* what) {
  const int error = errno;
  throw AuditError(path.filename().string() + ' ' + what + ": " + std::strerror(error));
}

// An open file, closed with this object, and with it any lock that is held on it.
class OpenFile {
 public:
  OpenFile(const fs::path& path, int flags) : file_(open(path.c_str(), flags | O_CLOEXEC | O_NOFOLLOW, 0600)) {
    if (file_ < 0) Fail(path, "cannot be opened");
    if ((flags & O_CREAT) != 0 && geteuid() == 0) GiveToFolder(path.parent_path());
  }
  ~OpenFile() { close(file_); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  int Get() const { return file_; }
  std::int64_t Size() const {
    struct stat state {};
    return fstat(file_, &state) == 0 ? state.st_size : 0;
  }

 private:
  // What root makes is written by workers of another user too, where the folder is theirs.
  void GiveToFolder(const fs::path& folder) const {
    struct stat owner {
    }, own{};
    if (stat(folder.c_str(), &owner) != 0 || fstat(file_, &own) != 0 || own.st_nlink != 1) return;
    if (own.st_uid != owner.st_uid && fchown(file_, owner.st_uid, owner.st_gid) != 0) Fail(folder, "cannot be shared");
  }

  int file_;
};

void Lock(const OpenFile& file, const fs::path& path) {
  const auto until = std::chrono::steady_clock::now() + kPatience;
  while (flock(file.Get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) Fail(path, "cannot be locked");
    if (std::chrono::steady_clock::now() > until)
      throw AuditError(path.filename().string() + " is held by another process");
    std::this_thread::sleep_for(kBeat);
  }
}

void Sync(const fs::path& folder) {
  const OpenFile file(folder, O_RDONLY | O_DIRECTORY);
  if (fsync(file.Get()) != 0) Fail(folder, "cannot be synced");
}

// The lines that one append adds, chained to what is there.
class Lines {
 public:
  explicit Lines(const std::optional<Record>& last) {
    if (last) last_ = {last->number, {}, {}, {}, {}, {}, last->hash};
  }

  void Add(Event event, const Visitor& visitor, const Details& details) {
    Record record{
        last_.number + 1, Now(), event, visitor, details, last_.hash.empty() ? std::string(kNoHash) : last_.hash, {}};
    const std::string line = LineOf(record);
    const auto read = ReadLine(line);  // as it stands: cut and cleaned
    if (!read) throw AuditError("a line of the audit log cannot be made of its texts");
    last_ = *read;
    Append(text_, line, '\n');
  }

  // Closes the unfinished line that the lines are to be written behind, and notes it.
  void CloseTorn(const FileEnd& end, const fs::path& path) {
    if (end.lacksEnd || (!end.torn.empty() && !end.tornEnds)) text_ += '\n';
    NoteTorn(end, path);
  }

  void NoteTorn(const FileEnd& end, const fs::path& path) {
    if (end.torn.empty() && !end.tornEnds) return;
    Add(Event::LineTorn, {},
        {{"file", path.filename().string()},
         {"bytes", std::to_string(end.torn.size())},
         {"sha256", HashOf(end.torn)},
         {"ended", end.tornEnds ? "yes" : "no"}});
  }

  const std::string& Text() const { return text_; }
  const Record& Last() const { return last_; }

 private:
  Record last_;
  std::string text_;
};

// All of it is on the disk afterwards, or nothing of it is in the file.
void WriteWhole(const OpenFile& file, std::string_view text, const fs::path& path) {
  const std::int64_t size = file.Size();
  std::string_view rest = text;
  while (!rest.empty()) {
    const ssize_t written = write(file.Get(), rest.data(), rest.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) break;
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
  if (rest.empty() && fdatasync(file.Get()) == 0) return;
  const int error = errno;
  // Where even this fails, the next append finds a torn line.
  if (ftruncate(file.Get(), size) != 0) { /* told by what follows */
  }
  errno = error;
  Fail(path, "cannot be written");
}

std::int64_t FirstNumberOf(const OpenFile& file, std::int64_t otherwise) {
  std::string text(kLongestLine, '\0');
  const ssize_t got = pread(file.Get(), text.data(), text.size(), 0);
  if (got <= 0) return otherwise;
  text.resize(static_cast<std::size_t>(got));
  const auto record = ReadLine(std::string_view(text).substr(0, text.find('\n')));
  return record ? record->number : otherwise;
}

// The end of the newest file that was put aside.
std::optional<FileEnd> EndBefore(const fs::path& folder, fs::path& path) {
  auto files = LogFiles(folder);
  if (!files.empty() && files.back() == CurrentFile(folder)) files.pop_back();
  if (files.empty()) return std::nullopt;
  path = files.back();
  const OpenFile file(path, O_RDONLY);
  return ReadEnd(file.Get(), file.Size(), path);
}

// Puts a file that is full aside.
void Rotate(const fs::path& folder, std::optional<OpenFile>& file) {
  const fs::path path = CurrentFile(folder), full = FullFile(folder, FirstNumberOf(*file, 0));
  if (fs::exists(full)) throw AuditError(full.filename().string() + " is there already; move it away to go on");
  if (rename(path.c_str(), full.c_str()) != 0) Fail(path, "cannot be put aside");
  file.emplace(path, kAppending);
}

// The lines that go on where the log ends: none yet but those that say how it came about.
Lines LinesBehind(const OpenFile& file, const fs::path& folder) {
  const fs::path path = CurrentFile(folder);
  const std::int64_t size = file.Size();
  const FileEnd end = size > 0 ? ReadEnd(file.Get(), size, path) : FileEnd();
  if (end.last) {
    Lines lines(end.last);
    lines.CloseTorn(end, path);
    return lines;
  }
  fs::path before;
  const std::optional<FileEnd> earlier = EndBefore(folder, before);
  Lines lines(earlier ? earlier->last : std::nullopt);
  lines.CloseTorn(end, path);
  if (earlier) {
    lines.Add(Event::LogContinued, {}, {{"after", before.filename().string()}});
    lines.NoteTorn(*earlier, before);
  }
  return lines;
}

}  // namespace

Journal::Journal(fs::path folder, std::int64_t largestFile) : folder_(std::move(folder)), largestFile_(largestFile) {
  std::error_code failed;
  fs::create_directories(folder_.parent_path(), failed);
  const bool isNew = mkdir(folder_.c_str(), 0700) == 0;
  const std::string name = "audit: the folder " + folder_.string();
  if (!isNew && errno != EEXIST) throw host::SettingError(name + " cannot be made: " + std::strerror(errno));
  // What is somebody else's, or the system's, is neither changed nor written to.
  struct stat state {};
  const bool isOwn = stat(folder_.c_str(), &state) == 0 && S_ISDIR(state.st_mode) && (state.st_mode & 077) == 0 &&
                     (geteuid() == 0 || state.st_uid == geteuid());
  if (!isOwn) throw host::SettingError(name + " has to be the server's own, and closed to others (mode 0700)");
}

Record Journal::Append(Event event, const Visitor& visitor, const Details& details) const {
  const fs::path lockPath = folder_ / "lock", path = CurrentFile(folder_);
  const OpenFile lock(lockPath, O_RDWR | O_CREAT);
  Lock(lock, lockPath);
  std::optional<OpenFile> file(std::in_place, path, kAppending);
  if (file->Size() > largestFile_) Rotate(folder_, file);
  const bool isNew = file->Size() == 0;
  Lines lines = LinesBehind(*file, folder_);
  lines.Add(event, visitor, details);
  WriteWhole(*file, lines.Text(), path);
  if (isNew) Sync(folder_);
  return lines.Last();
}

}  // namespace kalvo::audit
