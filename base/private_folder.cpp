#include "base/private_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <system_error>

namespace kalvo::base {

namespace fs = std::filesystem;

std::string MakePrivateFolder(const fs::path& folder, Privacy privacy) {
  if (!folder.has_filename() && folder.has_parent_path() && folder.parent_path() != folder) {
    return MakePrivateFolder(folder.parent_path(), privacy);  // "folder/"
  }
  std::error_code failed;
  fs::create_directories(folder.parent_path(), failed);
  if (mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) return std::strerror(errno);
  struct stat state {};
  const int told = privacy == Privacy::Own ? lstat(folder.c_str(), &state) : stat(folder.c_str(), &state);
  if (told != 0) return std::strerror(errno);
  if (!S_ISDIR(state.st_mode)) return "it is not a folder";
  const bool rootMay = privacy == Privacy::Closed && geteuid() == 0;
  if (!rootMay && state.st_uid != geteuid()) return "it belongs to another user";
  if (privacy == Privacy::Closed && (state.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
    return "others may look into it; a folder of its own is needed, and chmod 700";
  }
  return "";
}

void RemoveOlderThan(const fs::path& folder, std::int64_t seconds) {
  std::error_code failed;
  for (const auto& entry : fs::directory_iterator(folder, failed)) {
    struct stat state {};
    if (lstat(entry.path().c_str(), &state) != 0 || !S_ISREG(state.st_mode)) continue;
    if (std::time(nullptr) - state.st_mtime > seconds) unlink(entry.path().c_str());
  }
}

}  // namespace kalvo::base
