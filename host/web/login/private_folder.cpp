#include "host/web/login/private_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>

#include "host/parts/setting_error.h"

namespace kalvo::web::login {

namespace fs = std::filesystem;

void MakePrivateFolder(std::string_view setting, const fs::path& folder) {
  if (!folder.has_filename()) return MakePrivateFolder(setting, folder.parent_path());
  const auto refuse = [&](const std::string& why) {
    throw host::SettingError(std::string(setting) + ": " + folder.string() + " cannot be a folder of ours: " + why);
  };
  std::error_code failed;
  fs::create_directories(folder.parent_path(), failed);
  if (mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) refuse(std::strerror(errno));
  struct stat state {};
  if (stat(folder.c_str(), &state) != 0) refuse(std::strerror(errno));
  if (!S_ISDIR(state.st_mode)) refuse("it is no folder");
  if (geteuid() != 0 && state.st_uid != geteuid()) refuse("it belongs to another user");
  if ((state.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
    refuse("others may look into it; a folder of its own is needed, and chmod 700");
  }
}

void RemoveOlderThan(const fs::path& folder, std::int64_t seconds) {
  std::error_code failed;
  for (const auto& entry : fs::directory_iterator(folder, failed)) {
    struct stat state {};
    if (lstat(entry.path().c_str(), &state) != 0 || !S_ISREG(state.st_mode)) continue;
    if (std::time(nullptr) - state.st_mtime > seconds) unlink(entry.path().c_str());
  }
}

}  // namespace kalvo::web::login
