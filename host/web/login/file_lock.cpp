#include "host/web/login/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kalvo::web::login {

bool IsStillThere(int file, const std::filesystem::path& path) {
  struct stat open {
  }, named{};
  return fstat(file, &open) == 0 && lstat(path.c_str(), &named) == 0 && open.st_ino == named.st_ino &&
         open.st_dev == named.st_dev;
}

std::optional<FileLock> FileLock::Try(std::filesystem::path path) {
  const int file = open(path.c_str(), O_CREAT | O_RDWR | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (file < 0) return std::nullopt;
  if (flock(file, LOCK_EX | LOCK_NB) != 0 || !IsStillThere(file, path)) {
    close(file);
    return std::nullopt;
  }
  return FileLock(std::move(path), file);
}

FileLock::~FileLock() {
  if (file_ < 0) return;
  if (once_) unlink(path_.c_str());
  close(file_);
}

}  // namespace kalvo::web::login
