#include "adapters/maildir/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <memory>

namespace kalvo::maildir {

namespace {

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr int kFileFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
constexpr std::time_t kAbandonedAfter = 60;  // seconds

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

bool WriteAll(int handle, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = write(handle, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

// Opens the file that is written beside; one that a crash left behind is taken over.
File CreateBeside(const File& folder, const std::string& name) {
  constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  File file(openat(folder.Handle(), name.c_str(), flags, 0600));
  if (file || errno != EEXIST) return file;
  struct stat status {};
  if (fstatat(folder.Handle(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
      status.st_mtime + kAbandonedAfter < std::time(nullptr)) {
    unlinkat(folder.Handle(), name.c_str(), 0);
    file = File(openat(folder.Handle(), name.c_str(), flags, 0600));
  }
  return file;
}

}  // namespace

File& File::operator=(File&& other) noexcept {
  std::swap(handle_, other.handle_);
  return *this;
}

File::~File() {
  if (handle_ >= 0) close(handle_);
}

bool IsStep(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && name.find_first_of(std::string_view("/\0", 2)) == name.npos;
}

File OpenFolder(const File& top, std::string_view path) {
  File at(openat(top.Handle(), ".", kFolderFlags));
  while (at && !path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    const std::string step(path.substr(0, end));
    path.remove_prefix(std::min(end + 1, path.size()));
    at = IsStep(step) ? File(openat(at.Handle(), step.c_str(), kFolderFlags)) : File();
  }
  return at;
}

File OpenFile(const File& folder, const std::string& name) {
  errno = ENOENT;
  if (!IsStep(name)) return File();
  File file(openat(folder.Handle(), name.c_str(), kFileFlags));
  if (!file || S_ISREG(StatusOf(file).st_mode)) return file;
  errno = ENOENT;
  return File();
}

std::vector<Name> NamesIn(const File& folder) {
  std::vector<Name> names;
  const int handle = openat(folder.Handle(), ".", kFolderFlags);
  if (handle < 0) return names;
  const std::unique_ptr<DIR, CloseFolder> listing(fdopendir(handle));
  if (!listing) return close(handle), names;
  while (const dirent* entry = readdir(listing.get())) {
    unsigned char type = entry->d_type;
    if (type == DT_UNKNOWN) {
      struct stat status {};
      if (fstatat(handle, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
      type = S_ISDIR(status.st_mode) ? DT_DIR : S_ISREG(status.st_mode) ? DT_REG : DT_LNK;
    }
    if ((type == DT_DIR || type == DT_REG) && IsStep(entry->d_name)) names.push_back({entry->d_name, type == DT_DIR});
  }
  return names;
}

struct stat StatusOf(const File& file) {
  struct stat status {};
  fstat(file.Handle(), &status);
  return status;
}

std::optional<std::string> ReadAll(const File& file, std::size_t limit) {
  const auto size = static_cast<std::size_t>(StatusOf(file).st_size);
  if (size > limit) return std::nullopt;
  auto content = ReadBeginning(file, size);
  return content && content->size() == size ? std::move(content) : std::nullopt;
}

std::optional<std::string> ReadBeginning(const File& file, std::size_t limit) {
  struct stat status {};
  if (!file || fstat(file.Handle(), &status) != 0) return std::nullopt;
  std::string content(std::min(static_cast<std::size_t>(status.st_size), limit), '\0');
  std::size_t at = 0;
  while (at < content.size()) {
    const ssize_t got = pread(file.Handle(), content.data() + at, content.size() - at, static_cast<off_t>(at));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return std::nullopt;
    if (got == 0) break;
    at += static_cast<std::size_t>(got);
  }
  content.resize(at);
  return content;
}

File OwnFolder(const File& top, const char* name) {
  mkdirat(top.Handle(), name, 0700);
  return OpenFolder(top, name);
}

bool ReplaceFile(const File& folder, const std::string& name, std::string_view content, Durable durable) {
  const std::string beside = name + ".new";
  const File file = CreateBeside(folder, beside);
  if (!file) return false;
  const bool lasts = durable == Durable::Yes;
  if (WriteAll(file.Handle(), content) && (!lasts || fsync(file.Handle()) == 0) &&
      renameat(folder.Handle(), beside.c_str(), folder.Handle(), name.c_str()) == 0) {
    return !lasts || fsync(folder.Handle()) == 0;
  }
  const int why = errno;
  unlinkat(folder.Handle(), beside.c_str(), 0);
  errno = why;
  return false;
}

Moved MoveFile(const File& from, const std::string& name, const File& to, const std::string& as) {
  if (renameat2(from.Handle(), name.c_str(), to.Handle(), as.c_str(), RENAME_NOREPLACE) != 0) {
    return errno == ENOENT ? Moved::Gone : Moved::No;
  }
  fsync(to.Handle());
  fsync(from.Handle());
  return Moved::Yes;
}

}  // namespace kalvo::maildir
