#include "host/web/login/kept_folder.h"

#include "base/private_folder.h"
#include "host/parts/setting_error.h"

namespace kalvo::web::login {

void MakePrivateFolder(std::string_view setting, const std::filesystem::path& folder) {
  const std::string wrong = base::MakePrivateFolder(folder);
  if (wrong.empty()) return;
  throw host::SettingError(std::string(setting) + ": " + folder.string() + " cannot be a folder of ours: " + wrong);
}

}  // namespace kalvo::web::login
