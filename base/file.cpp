#include "base/file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace kalvo::base {

File& File::operator=(File&& other) noexcept {
  File given(std::move(other));
  std::swap(handle_, given.handle_);
  return *this;
}

File::~File() {
  if (handle_ >= 0) close(handle_);
}

File Open(const std::filesystem::path& path, int flags, mode_t mode) {
  return File(open(path.c_str(), flags | O_CLOEXEC, mode));
}

File OpenIn(const File& folder, const std::string& name, int flags, mode_t mode) {
  return File(openat(folder.Handle(), name.c_str(), flags | O_CLOEXEC, mode));
}

struct stat StatusOf(const File& file) {
  struct stat status {};
  fstat(file.Handle(), &status);
  return status;
}

bool IsStillThere(const File& file, const std::filesystem::path& path) {
  struct stat open {
  }, named{};
  return fstat(file.Handle(), &open) == 0 && lstat(path.c_str(), &named) == 0 && open.st_ino == named.st_ino &&
         open.st_dev == named.st_dev;
}

bool WriteAll(const File& file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(file.Handle(), text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::optional<std::string> ReadPiece(const File& file, std::size_t limit, std::size_t from) {
  struct stat status {};
  if (fstat(file.Handle(), &status) != 0) return std::nullopt;
  const auto size = static_cast<std::size_t>(status.st_size);
  std::string piece(std::min(size - std::min(from, size), limit), '\0');
  std::size_t at = 0;
  while (at < piece.size()) {
    const auto place = static_cast<off_t>(from + at);
    const ssize_t got = pread(file.Handle(), piece.data() + at, piece.size() - at, place);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return std::nullopt;
    if (got == 0) break;  // it was cut meanwhile
    at += static_cast<std::size_t>(got);
  }
  piece.resize(at);
  return piece;
}

std::optional<std::string> ReadAll(const File& file, std::size_t limit) {
  const auto size = static_cast<std::size_t>(StatusOf(file).st_size);
  if (size > limit) {
    errno = EFBIG;
    return std::nullopt;
  }
  auto content = ReadPiece(file, size);
  return content && content->size() == size ? std::move(content) : std::nullopt;
}

std::optional<std::string> ReadFile(const std::filesystem::path& path, std::size_t limit) {
  const File file = Open(path, O_RDONLY | O_NONBLOCK);
  if (!file) return std::nullopt;
  if (S_ISREG(StatusOf(file).st_mode)) return ReadAll(file, limit);
  errno = EINVAL;
  return std::nullopt;
}

bool SyncFolder(const std::filesystem::path& folder) {
  const File file = Open(folder, O_RDONLY | O_DIRECTORY);
  return file && fsync(file.Handle()) == 0;
}

}  // namespace kalvo::base
