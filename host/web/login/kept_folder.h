#pragma once

#include <filesystem>
#include <stdexcept>
#include <string_view>

namespace kalvo::web::login {

// Thrown when what a sign-in has to leave behind cannot be written, with the file and the reason.
class NotKept : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Makes the folder for its owner alone; one that is there has to be so already. Fails with SettingError, which names
// the setting that led here.
void MakePrivateFolder(std::string_view setting, const std::filesystem::path& folder);

}  // namespace kalvo::web::login
