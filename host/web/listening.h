#pragma once

#include <filesystem>
#include <string>

#include "base/file.h"

namespace kalvo::web {

// Makes the socket that nginx hands requests to and all workers take them from. It does not block. `queue`
// requests may wait in it; nginx finds it full beyond that. Fails with SettingError.
base::File ListenForNginx(const std::filesystem::path& path, int queue);

// Changes how many requests may wait.
void ChangeQueue(int socket, int queue);

// Fails with SettingError when another program listens there already.
void CheckAddressIsFree(const std::string& listen);

}  // namespace kalvo::web
