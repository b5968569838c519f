#include "adapters/maildir/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>

namespace kalvo::maildir {

namespace {

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW;
constexpr int kFileFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK;

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

}  // namespace

bool IsStep(std::string_view name) {
  return !name.empty() && name != "." && name != ".." &&
         name.find_first_of(std::string_view("/\0", 2)) == std::string::npos;
}

File OpenFolder(const File& top, std::string_view path) {
  File at = base::OpenIn(top, ".", kFolderFlags);
  while (at && !path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    const std::string step(path.substr(0, end));
    path.remove_prefix(std::min(end + 1, path.size()));
    at = IsStep(step) ? base::OpenIn(at, step, kFolderFlags) : File();
  }
  return at;
}

File OpenFile(const File& folder, const std::string& name) {
  errno = ENOENT;
  if (!IsStep(name)) return File();
  File file = base::OpenIn(folder, name, kFileFlags);
  if (!file || S_ISREG(base::StatusOf(file).st_mode)) return file;
  errno = ENOENT;
  return File();
}

std::vector<Name> NamesIn(const File& folder) {
  std::vector<Name> names;
  File again = base::OpenIn(folder, ".", kFolderFlags);  // its own place in the list of names
  const std::unique_ptr<DIR, CloseFolder> listing(again ? fdopendir(again.Handle()) : nullptr);
  if (!listing) return names;
  const int handle = again.Release();  // the listing's from now on
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

File OwnFolder(const File& top, const char* name) {
  mkdirat(top.Handle(), name, 0700);
  return OpenFolder(top, name);
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
