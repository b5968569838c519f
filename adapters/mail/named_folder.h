#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/mail/held_message.h"

namespace kalvo::mail {

struct NamedFolder {
  std::string key;
  std::string name;  // as it is shown, `FolderName`
};

// A folder's own name as it is shown: cleaned, never empty.
std::string FolderName(std::string_view raw);

// The key of the folder at a path, the root's for none; nothing where there is no such folder. Names are compared as
// they are shown, exactly, else without regard to case. A name may itself hold backslashes. `below` answers the folders
// right below one.
using FoldersBelow = std::function<std::vector<NamedFolder>(const std::string& folder)>;
std::optional<std::string> FolderAt(const FolderPath& path, const FoldersBelow& below);

}  // namespace kalvo::mail
