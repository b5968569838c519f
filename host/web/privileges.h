#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>

namespace kalvo::web {

// A user of the system, whom workers serve as.
struct Identity {
  std::string name, groupName;
  uid_t user;
  gid_t group;
};

// The user that the settings name, where the process may become that user; nothing for "". Fails with SettingError.
std::optional<Identity> IdentityNamed(const std::string& name);

// What a worker does first, for good. Root becomes that user; without one it keeps its id and loses every capability.
// Nobody gets rights from a program that is run later. Throws std::system_error when the system refuses.
void GiveUpRights(const std::optional<Identity>& identity);

// Lets the user have a folder that root made, and the files and folders in it. Links are not followed.
void HandOver(const std::filesystem::path& folder, const Identity& identity);

// Whether the user may read a file. Asked by root, in the user's place.
bool MayRead(const std::filesystem::path& file, const Identity& identity);

// From now on the process takes no more than so many MiB of addresses; an allocation beyond fails. A build for a
// sanitizer, which takes terabytes, goes without.
void LimitAddressSpace(int mebibytes);

}  // namespace kalvo::web
