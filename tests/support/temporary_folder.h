#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kalvo::test {

// A folder of its own, below the system's temporary folder unless another is named; removed with everything in it.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(const std::filesystem::path& below = std::filesystem::temp_directory_path());
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }

  // Gives the folder to a user of the system, by name; for a server that refuses to run as root.
  void GiveTo(const std::string& user) const;

 private:
  std::filesystem::path path_;
};

// A file with this text.
void WriteFile(const std::filesystem::path& file, std::string_view text);
std::string ReadFile(const std::filesystem::path& file);

}  // namespace kalvo::test
