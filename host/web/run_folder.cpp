#include "host/web/run_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "base/fresh_file.h"
#include "base/private_folder.h"
#include "host/parts/setting_error.h"
#include "host/web/privileges.h"

namespace kalvo::web {

namespace fs = std::filesystem;
using host::SettingError;

RunFolder::RunFolder(fs::path path) : path_(std::move(path)) {
  if (Socket().native().size() >= sizeof(sockaddr_un::sun_path)) {
    throw SettingError("run: " + path_.string() + " is too long for a socket in it; a shorter path is needed");
  }
  const std::string wrong = base::MakePrivateFolder(path_, base::Privacy::Own);
  if (!wrong.empty()) throw SettingError("run: " + path_.string() + " cannot be the server's own folder: " + wrong);
  const fs::path file = path_ / "lock";
  lock_ = base::Open(file, O_RDWR | O_CREAT);
  if (!lock_) throw SettingError("run: " + file.string() + " cannot be written: " + std::strerror(errno));
  if (flock(lock_.Handle(), LOCK_EX | LOCK_NB) != 0) {
    throw SettingError("run: another server is running in " + path_.string());
  }
}

void RunFolder::Show(const Identity& identity) const {
  const bool shown = chmod(path_.c_str(), 0711) == 0 && chmod(Errors().c_str(), 0755) == 0 &&
                     lchown(Socket().c_str(), identity.user, identity.group) == 0;
  if (!shown) throw SettingError("run: " + path_.string() + " cannot be shown to " + identity.name);
}

void WriteFile(const fs::path& file, std::string_view content) {
  if (base::ReplaceFile(file, content, {.mode = 0644})) return;
  throw SettingError(file.string() + " cannot be written: " + std::strerror(errno));
}

}  // namespace kalvo::web
