#include "adapters/maildir/quota.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "kalvo/platform/append.h"

namespace kalvo::maildir {

namespace {

constexpr const char* kName = "maildirsize";

}  // namespace

bool Quota::Note(std::int64_t bytes, int messages) const {
  const File file = base::OpenIn(tree_, kName, O_WRONLY | O_APPEND | O_NOFOLLOW | O_NONBLOCK);
  if (!file) return errno == ENOENT;
  if (!S_ISREG(base::StatusOf(file).st_mode)) return errno = EINVAL, false;
  const std::string line = Built([&](std::string& out) { Append(out, bytes, ' ', messages, '\n'); });
  const ssize_t written = write(file.Handle(), line.data(), line.size());
  if (written >= 0 && written != static_cast<ssize_t>(line.size())) errno = ENOSPC;
  return written == static_cast<ssize_t>(line.size());
}

}  // namespace kalvo::maildir
