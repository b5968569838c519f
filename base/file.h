#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace kalvo::base {

// An open file, folder, pipe or socket of the system: closed when this object goes, and with it any lock that is held
// on it. One owner at a time; it can be moved.
//
// Where an operation below fails, `errno` says why.
class File {
 public:
  File() = default;
  explicit File(int handle) : handle_(handle) {}
  File(File&& other) noexcept : handle_(std::exchange(other.handle_, -1)) {}
  File& operator=(File&& other) noexcept;
  ~File();

  // Whether it is open.
  explicit operator bool() const { return handle_ >= 0; }

  // The system's own number of it, for its calls; negative when it is closed.
  int Handle() const { return handle_; }

  // Gives it away open, to somebody who closes it.
  int Release() { return std::exchange(handle_, -1); }

  // Closes it now.
  void Close() { *this = File(); }

 private:
  int handle_ = -1;
};

// Opens a file or folder with the flags of open(2). No program that is run later inherits it; what is made is its
// owner's alone unless `mode` says otherwise. Closed where that cannot be done.
File Open(const std::filesystem::path& path, int flags, mode_t mode = 0600);

// The same for a name in a folder that is open.
File OpenIn(const File& folder, const std::string& name, int flags, mode_t mode = 0600);

// What the system knows of it; zeros where it cannot be told.
struct stat StatusOf(const File& file);

// Whether the path still names the file that is open: it does not once somebody has replaced or removed it. A link is
// not followed.
bool IsStillThere(const File& file, const std::filesystem::path& path);

// Writes all of a text where the file stands. False where it cannot be written; some of it may have been.
bool WriteAll(const File& file, std::string_view text);

// At most `limit` bytes from a place on, however many reads that takes; nothing where it cannot be read.
std::optional<std::string> ReadPiece(const File& file, std::size_t limit, std::size_t from = 0);

// The whole content; nothing where it cannot be read or is longer than `limit`, which is the error EFBIG.
std::optional<std::string> ReadAll(const File& file, std::size_t limit);

// The whole content of a regular file by its path. Nothing as `ReadAll` has it, and for a folder, a pipe or a device,
// which nobody waits for.
std::optional<std::string> ReadFile(const std::filesystem::path& path, std::size_t limit = std::size_t{1} << 30);

// Sees to it that the disk knows which names a folder has. False where it cannot be done.
bool SyncFolder(const std::filesystem::path& folder);

}  // namespace kalvo::base
