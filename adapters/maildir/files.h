#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sys/stat.h>

namespace kalvo::maildir {

// An open file or folder; closed when it is destroyed.
class File {
 public:
  File() = default;
  explicit File(int handle) : handle_(handle) {}
  File(File&& other) noexcept : handle_(std::exchange(other.handle_, -1)) {}
  File& operator=(File&& other) noexcept;
  ~File();

  explicit operator bool() const { return handle_ >= 0; }
  int Handle() const { return handle_; }
  int Release() { return std::exchange(handle_, -1); }

 private:
  int handle_ = -1;
};

// Whether a name may be a single step below a folder: not "", ".", "..", and without "/" and NUL.
bool IsStep(std::string_view name);

// Opens a folder by a path below another. No symbolic link on the way is followed and no step leads upwards;
// nothing where there is no such folder.
File OpenFolder(const File& top, std::string_view path);

// Opens a regular file of a folder for reading; never a link, a pipe or a device. Where it is closed `errno` says why:
// `ENOENT` where there is no such file.
File OpenFile(const File& folder, const std::string& name);

struct Name {
  std::string text;
  bool isFolder = false;
};

// The names in a folder, without those that are links, pipes and the like; in no order.
std::vector<Name> NamesIn(const File& folder);

struct stat StatusOf(const File& file);

// The whole content; nothing where it cannot be read or is longer than `limit`.
std::optional<std::string> ReadAll(const File& file, std::size_t limit);

// As much of the beginning as there is, at most `limit` bytes; nothing where it cannot be read.
std::optional<std::string> ReadBeginning(const File& file, std::size_t limit);

// A folder of ours below another, made when it is not there; closed where that cannot be done.
File OwnFolder(const File& top, const char* name);

enum class Durable : bool { No, Yes };  // whether it also outlives a power cut

// Replaces a file of a folder as a whole: it is written beside it first and then takes its place. False where that
// cannot be done, or another process is doing the same right now.
bool ReplaceFile(const File& folder, const std::string& name, std::string_view content, Durable durable = Durable::No);

enum class Moved {
  Yes,
  Gone,  // there is no such file
  No,    // `errno` says why; the file is where it was
};

// Gives a file a name in another folder of the same file system, where no file may have it, and sees to it that the
// disk knows.
Moved MoveFile(const File& from, const std::string& name, const File& to, const std::string& as);

}  // namespace kalvo::maildir
