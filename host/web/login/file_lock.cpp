#include "host/web/login/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace kalvo::web::login {

std::optional<FileLock> FileLock::Try(std::filesystem::path path) {
  base::File file = base::Open(path, O_CREAT | O_RDWR | O_NOFOLLOW);
  if (!file || flock(file.Handle(), LOCK_EX | LOCK_NB) != 0 || !base::IsStillThere(file, path)) return std::nullopt;
  return FileLock(std::move(path), std::move(file));
}

FileLock::~FileLock() {
  if (file_ && once_) unlink(path_.c_str());
}

}  // namespace kalvo::web::login
