#pragma once

#include <filesystem>
#include <optional>
#include <utility>

#include "base/file.h"

namespace kalvo::web::login {

// A file that this process has for itself among all that ask for it by this class. Given up when the object goes or
// its process dies.
class FileLock {
 public:
  // Makes the file where there is none. Nothing when somebody else has it, or when it cannot be made.
  static std::optional<FileLock> Try(std::filesystem::path path);

  ~FileLock();
  FileLock(FileLock&&) noexcept = default;
  FileLock& operator=(FileLock&&) = delete;

  // The file goes when it is given up.
  void RemoveAtEnd() { once_ = true; }

 private:
  FileLock(std::filesystem::path path, base::File file) : path_(std::move(path)), file_(std::move(file)) {}

  std::filesystem::path path_;
  base::File file_;
  bool once_ = false;
};

}  // namespace kalvo::web::login
