#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace kalvo::base {

enum class Privacy {
  Closed,  // nobody else may look into it. Root takes the folder of another user as well; a link may lead to it
  Own,     // it is this user's own and no link; others may be let pass through it
};

// Makes a folder for its owner alone, and the folders above it where they are missing; one that is there has to be so
// already. "" or why it cannot be used: what is somebody else's is neither changed nor written to.
std::string MakePrivateFolder(const std::filesystem::path& folder, Privacy privacy = Privacy::Closed);

// Removes the regular files of a folder that nobody has written or touched for so many seconds.
void RemoveOlderThan(const std::filesystem::path& folder, std::int64_t seconds);

}  // namespace kalvo::base
