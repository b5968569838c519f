#include "host/audit/journal.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

#include "base/file.h"
#include "base/private_folder.h"
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

// What root makes is written by workers of another user too, where the folder is theirs.
void GiveToFolder(const base::File& file, const fs::path& folder) {
  struct stat owner {};
  const struct stat own = base::StatusOf(file);
  if (stat(folder.c_str(), &owner) != 0 || own.st_nlink != 1 || own.st_uid == owner.st_uid) return;
  if (fchown(file.Handle(), owner.st_uid, owner.st_gid) != 0) Fail(folder, "cannot be shared");
}

base::File OpenFile(const fs::path& path, int flags) {
  base::File file = base::Open(path, flags | O_NOFOLLOW);
  if (!file) Fail(path, "cannot be opened");
  if ((flags & O_CREAT) != 0 && geteuid() == 0) GiveToFolder(file, path.parent_path());
  return file;
}

std::int64_t SizeOf(const base::File& file) { return base::StatusOf(file).st_size; }

void Lock(const base::File& file, const fs::path& path) {
  const auto until = std::chrono::steady_clock::now() + kPatience;
  while (flock(file.Handle(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) Fail(path, "cannot be locked");
    if (std::chrono::steady_clock::now() > until)
      throw AuditError(path.filename().string() + " is held by another process");
    std::this_thread::sleep_for(kBeat);
  }
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
void WriteWhole(const base::File& file, std::string_view text, const fs::path& path) {
  const std::int64_t size = SizeOf(file);
  if (base::WriteAll(file, text) && fdatasync(file.Handle()) == 0) return;
  const int error = errno;
  // Where even this fails, the next append finds a torn line.
  if (ftruncate(file.Handle(), size) != 0) { /* told by what follows */
  }
  errno = error;
  Fail(path, "cannot be written");
}

std::int64_t FirstNumberOf(const base::File& file, std::int64_t otherwise) {
  const std::string text = base::ReadPiece(file, kLongestLine).value_or("");
  const auto record = ReadLine(std::string_view(text).substr(0, text.find('\n')));
  return record ? record->number : otherwise;
}

// The end of the newest file that was put aside.
std::optional<FileEnd> EndBefore(const fs::path& folder, fs::path& path) {
  auto files = LogFiles(folder);
  if (!files.empty() && files.back() == CurrentFile(folder)) files.pop_back();
  if (files.empty()) return std::nullopt;
  path = files.back();
  return ReadEnd(OpenFile(path, O_RDONLY), path);
}

// Puts a file that is full aside.
void Rotate(const fs::path& folder, base::File& file) {
  const fs::path path = CurrentFile(folder), full = FullFile(folder, FirstNumberOf(file, 0));
  if (fs::exists(full)) throw AuditError(full.filename().string() + " is there already; move it away to go on");
  if (rename(path.c_str(), full.c_str()) != 0) Fail(path, "cannot be put aside");
  file = OpenFile(path, kAppending);
}

// The lines that go on where the log ends: none yet but those that say how it came about.
Lines LinesBehind(const base::File& file, const fs::path& folder) {
  const fs::path path = CurrentFile(folder);
  const std::int64_t size = SizeOf(file);
  const FileEnd end = size > 0 ? ReadEnd(file, path) : FileEnd();
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
  const std::string wrong = base::MakePrivateFolder(folder_);
  if (wrong.empty()) return;
  throw host::SettingError("audit: the folder " + folder_.string() + " has to be the server's own: " + wrong);
}

Record Journal::Append(Event event, const Visitor& visitor, const Details& details) const {
  const fs::path lockPath = folder_ / "lock", path = CurrentFile(folder_);
  const base::File lock = OpenFile(lockPath, O_RDWR | O_CREAT);
  Lock(lock, lockPath);
  base::File file = OpenFile(path, kAppending);
  if (SizeOf(file) > largestFile_) Rotate(folder_, file);
  const bool isNew = SizeOf(file) == 0;
  Lines lines = LinesBehind(file, folder_);
  lines.Add(event, visitor, details);
  WriteWhole(file, lines.Text(), path);
  if (isNew && !base::SyncFolder(folder_)) Fail(folder_, "cannot be synced");
  return lines.Last();
}

}  // namespace kalvo::audit
