#include "adapters/mail/named_folder.h"

#include <algorithm>
#include <span>

#include "adapters/mail/shown_text.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::mail {

namespace {

constexpr std::string_view kUnnamed = "Unnamed";

using Names = std::span<const std::string>;
using Same = bool (*)(std::string_view a, std::string_view b);

// How many of the names the folder's own name takes, 0 for none.
std::size_t Taken(const NamedFolder& folder, Names names, Same same) {
  const FolderPath own = ParsePath(folder.name);
  const bool fits = own.size() <= names.size() && std::equal(own.begin(), own.end(), names.begin(), same);
  return fits ? own.size() : 0;
}

bool IsEqual(std::string_view a, std::string_view b) { return a == b; }

std::optional<std::string> Find(const std::string& folder, Names names, const FoldersBelow& below) {
  if (names.empty()) return folder;
  const auto folders = below(folder);
  for (const Same same : {Same{IsEqual}, Same{EqualsIgnoringCase}}) {
    for (const NamedFolder& each : folders) {
      const std::size_t taken = Taken(each, names, same);
      if (taken == 0) continue;
      if (auto found = Find(each.key, names.subspan(taken), below)) return found;
    }
  }
  return std::nullopt;
}

}  // namespace

std::string FolderName(std::string_view raw) {
  std::string name = CleanText(raw);
  return name.empty() ? std::string(kUnnamed) : name;
}

std::optional<std::string> FolderAt(const FolderPath& path, const FoldersBelow& below) {
  FolderPath names;
  for (const std::string& name : path) names.push_back(FolderName(name));
  return Find("", names, below);
}

}  // namespace kalvo::mail
