#include "host/web/run_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>

#include "host/parts/setting_error.h"
#include "host/web/privileges.h"

namespace kalvo::web {
namespace {

namespace fs = std::filesystem;
using host::SettingError;

void MakePrivate(const fs::path& path) {
  std::error_code error;
  fs::create_directories(path.parent_path(), error);
  if (mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) {
    throw SettingError("run: the folder " + path.string() + " cannot be made: " + std::strerror(errno));
  }
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != geteuid()) {
    throw SettingError("run: " + path.string() + " is no folder of this user");
  }
}

}  // namespace

RunFolder::RunFolder(fs::path path) : path_(std::move(path)) {
  if (Socket().native().size() >= sizeof(sockaddr_un::sun_path)) {
    throw SettingError("run: " + path_.string() + " is too long for a socket in it; a shorter path is needed");
  }
  MakePrivate(path_);
  const fs::path file = path_ / "lock";
  lock_ = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (lock_ < 0) throw SettingError("run: " + file.string() + " cannot be written: " + std::strerror(errno));
  if (flock(lock_, LOCK_EX | LOCK_NB) != 0) {
    close(lock_);
    throw SettingError("run: another server is running in " + path_.string());
  }
}

RunFolder::~RunFolder() { close(lock_); }

void RunFolder::Show(const Identity& identity) const {
  const bool shown = chmod(path_.c_str(), 0711) == 0 && chmod(Errors().c_str(), 0755) == 0 &&
                     lchown(Socket().c_str(), identity.user, identity.group) == 0;
  if (!shown) throw SettingError("run: " + path_.string() + " cannot be shown to " + identity.name);
}

void WriteFile(const fs::path& file, std::string_view content) {
  const fs::path fresh = file.string() + ".new";
  std::ofstream out(fresh, std::ios::binary | std::ios::trunc);
  out.write(content.data(), static_cast<std::streamsize>(content.size()));
  out.close();
  std::error_code error;
  if (out) fs::rename(fresh, file, error);
  if (!out || error) throw SettingError(file.string() + " cannot be written");
}

}  // namespace kalvo::web
