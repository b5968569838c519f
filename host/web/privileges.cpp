#include "host/web/privileges.h"

#include <fcntl.h>
#include <grp.h>
#include <linux/capability.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "base/file.h"
#include "host/parts/setting_error.h"

namespace kalvo::web {
namespace {

namespace fs = std::filesystem;

void Need(bool done, const char* what) {
  if (!done) throw std::system_error(errno, std::generic_category(), what);
}

void BecomeUser(const Identity& identity) {
  Need(initgroups(identity.name.c_str(), identity.group) == 0, "initgroups");
  Need(setresgid(identity.group, identity.group, identity.group) == 0, "setresgid");
  Need(setresuid(identity.user, identity.user, identity.user) == 0, "setresuid");
  if (setuid(0) == 0) throw std::system_error(EPERM, std::generic_category(), "root was not given up");
}

// First those that a program could bring back, which takes a capability itself; then all.
void DropCapabilities() {
  for (int capability = 0; prctl(PR_CAPBSET_READ, capability, 0, 0, 0) >= 0; ++capability) {
    Need(prctl(PR_CAPBSET_DROP, capability, 0, 0, 0) == 0, "a capability");
  }
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {};
  Need(syscall(SYS_capset, &header, none) == 0, "capset");
}

}  // namespace

std::optional<Identity> IdentityNamed(const std::string& name) {
  if (name.empty()) return std::nullopt;
  const passwd* entry = getpwnam(name.c_str());
  if (!entry) throw host::SettingError("user: this system has no user " + name);
  if (entry->pw_uid == 0) throw host::SettingError("user: " + name + " is root, whom workers are not to be");
  if (geteuid() != 0 && entry->pw_uid != geteuid()) {
    throw host::SettingError("user: only root can have its workers serve as " + name);
  }
  const Identity found{name, "", entry->pw_uid, entry->pw_gid};
  const group* its = getgrgid(found.group);
  if (!its) throw host::SettingError("user: the group of " + name + " has no name");
  return Identity{name, its->gr_name, found.user, found.group};
}

void GiveUpRights(const std::optional<Identity>& identity) {
  if (geteuid() == 0) {
    if (identity) {
      BecomeUser(*identity);
    } else {
      DropCapabilities();
    }
  }
  Need(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0, "no_new_privs");
}

void HandOver(const fs::path& folder, const Identity& identity) {
  const auto give = [&](const fs::path& path) {
    struct stat state {};
    // A file with a second name may be anybody's.
    if (lstat(path.c_str(), &state) == 0 && !S_ISDIR(state.st_mode) && state.st_nlink != 1) return;
    if (lchown(path.c_str(), identity.user, identity.group) != 0) {
      throw host::SettingError("user: " + path.string() + " cannot be given to " + identity.name + ": " +
                               std::generic_category().message(errno));
    }
  };
  give(folder);
  for (const auto& entry : fs::recursive_directory_iterator(folder)) give(entry.path());
}

bool MayRead(const fs::path& file, const Identity& identity) {
  if (geteuid() != 0) return access(file.c_str(), R_OK) == 0;
  if (setegid(identity.group) != 0 || seteuid(identity.user) != 0) return false;
  const base::File opened = base::Open(file, O_RDONLY);
  if (seteuid(0) != 0 || setegid(0) != 0) std::terminate();  // what is left could not go on serving
  return static_cast<bool>(opened);
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
void LimitAddressSpace(int) {}
#else
void LimitAddressSpace(int mebibytes) {
  const rlim_t bytes = static_cast<rlim_t>(mebibytes) << 20;
  rlimit limit{};
  Need(getrlimit(RLIMIT_AS, &limit) == 0, "getrlimit");
  if (limit.rlim_max != RLIM_INFINITY && limit.rlim_max <= bytes) return;  // the system's own is narrower
  limit.rlim_cur = limit.rlim_max = bytes;
  Need(setrlimit(RLIMIT_AS, &limit) == 0, "setrlimit");
}
#endif

}  // namespace kalvo::web
