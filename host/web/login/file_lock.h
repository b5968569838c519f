#pragma once

#include <filesystem>
#include <optional>
#include <utility>

namespace kalvo::web::login {

// A file that this process has for itself among all that ask for it by this class. Given up when the object goes or
// its process dies.
class FileLock {
 public:
  // Makes the file where there is none. Nothing when somebody else has it, or when it cannot be made.
  static std::optional<FileLock> Try(std::filesystem::path path);

  ~FileLock();
  FileLock(FileLock&& other) noexcept
      : path_(std::move(other.path_)), file_(std::exchange(other.file_, -1)), once_(other.once_) {}
  FileLock& operator=(FileLock&&) = delete;

  // The file goes when it is given up.
  void RemoveAtEnd() { once_ = true; }

 private:
  FileLock(std::filesystem::path path, int file) : path_(std::move(path)), file_(file) {}

  std::filesystem::path path_;
  int file_;
  bool once_ = false;
};

// Whether the path still names the file that is open: it does not once somebody replaced or removed it.
bool IsStillThere(int file, const std::filesystem::path& path);

}  // namespace kalvo::web::login
