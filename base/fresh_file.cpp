#include "base/fresh_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>

#include "base/random_bytes.h"

namespace kalvo::base {

namespace {

constexpr int kMaking = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW;

File FolderOf(const std::filesystem::path& path) {
  return Open(std::filesystem::absolute(path).parent_path(), O_RDONLY | O_DIRECTORY);
}

bool IsAbandoned(const File& folder, const std::string& name, std::int64_t after) {
  struct stat status {};
  if (fstatat(folder.Handle(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
  return after == 0 || status.st_mtime + after < std::time(nullptr);
}

File MakeBeside(const File& folder, const std::string& name, const Writing& writing) {
  if (!folder) return File();  // `errno` tells still why it is not open
  File file = OpenIn(folder, name, kMaking, writing.mode);
  if (file || errno != EEXIST) return file;
  if (!IsAbandoned(folder, name, writing.abandonedAfter)) {
    errno = EEXIST;
    return File();
  }
  unlinkat(folder.Handle(), name.c_str(), 0);
  return OpenIn(folder, name, kMaking, writing.mode);
}

// Whether the name is still that file's: another process that took it over has its own there.
bool IsNamed(const File& folder, const std::string& name, const File& file) {
  struct stat named {};
  const struct stat own = StatusOf(file);
  return fstatat(folder.Handle(), name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 && named.st_ino == own.st_ino &&
         named.st_dev == own.st_dev;
}

// Removes a name without a word of its own in `errno`.
void Remove(const File& folder, const std::string& name) {
  const int why = errno;
  unlinkat(folder.Handle(), name.c_str(), 0);
  errno = why;
}

}  // namespace

FreshFile::FreshFile(const File& folder, std::string name, const Writing& writing)
    : folder_(folder),
      name_(std::move(name)),
      beside_(name_ + ".new"),
      durable_(writing.durable),
      file_(MakeBeside(folder_, beside_, writing)) {}

FreshFile::FreshFile(const std::filesystem::path& path, const Writing& writing)
    : own_(FolderOf(path)),
      folder_(own_),
      name_(path.filename()),
      beside_(name_ + ".new"),
      durable_(writing.durable),
      file_(MakeBeside(folder_, beside_, writing)) {}

FreshFile::~FreshFile() {
  if (file_ && !placed_ && IsNamed(folder_, beside_, file_)) Remove(folder_, beside_);
}

bool FreshFile::Write(std::string_view content) {
  return file_ && WriteAll(file_, content) && (durable_ == Durable::No || fsync(file_.Handle()) == 0);
}

bool FreshFile::TakePlace() {
  placed_ = file_ && renameat(folder_.Handle(), beside_.c_str(), folder_.Handle(), name_.c_str()) == 0;
  return placed_ && (durable_ == Durable::No || fsync(folder_.Handle()) == 0);
}

bool ReplaceFile(const File& folder, const std::string& name, std::string_view content, const Writing& writing) {
  FreshFile fresh(folder, name, writing);
  return fresh.Write(content) && fresh.TakePlace();
}

bool ReplaceFile(const std::filesystem::path& path, std::string_view content, const Writing& writing) {
  FreshFile fresh(path, writing);
  return fresh.Write(content) && fresh.TakePlace();
}

bool MakeOnce(const File& folder, const std::string& name, std::string_view content) {
  const std::string beside = name + '.' + RandomName(8);
  const File file = OpenIn(folder, beside, kMaking);
  const bool written = file && WriteAll(file, content) && fsync(file.Handle()) == 0;
  const bool there = written && (linkat(folder.Handle(), beside.c_str(), folder.Handle(), name.c_str(), 0) == 0 ||
                                 errno == EEXIST);
  if (file) Remove(folder, beside);
  return there;
}

}  // namespace kalvo::base
