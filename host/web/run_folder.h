#pragma once

#include <filesystem>
#include <string_view>

#include "base/file.h"

namespace kalvo::web {

struct Identity;

// The private folder that one running server keeps its socket, its nginx and its error pages in. Held by one
// process at a time.
class RunFolder {
 public:
  // Makes the folder where it is missing and takes hold of it. Fails with SettingError when it belongs to another
  // user or is held by another server.
  explicit RunFolder(std::filesystem::path path);
  RunFolder(const RunFolder&) = delete;
  RunFolder& operator=(const RunFolder&) = delete;

  // Lets nginx and the workers of another user reach what they need in it: the socket and the error pages. The folder
  // itself stays ours to write.
  void Show(const Identity& identity) const;

  const std::filesystem::path& Path() const { return path_; }
  std::filesystem::path Socket() const { return path_ / "worker.sock"; }
  std::filesystem::path Errors() const { return path_ / "errors"; }
  std::filesystem::path NginxConfig() const { return path_ / "nginx.conf"; }
  std::filesystem::path NginxSite() const { return path_ / "site.conf"; }
  std::filesystem::path NginxLog() const { return path_ / "nginx.log"; }
  std::filesystem::path NginxPid() const { return path_ / "nginx.pid"; }

 private:
  std::filesystem::path path_;
  base::File lock_;
};

// Writes a file as a whole, for everybody to read: a reader sees the old content or the new. Fails with SettingError.
void WriteFile(const std::filesystem::path& file, std::string_view content);

}  // namespace kalvo::web
