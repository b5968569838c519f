#include "host/parts/places.h"

#include <filesystem>

namespace kalvo::host {

std::string_view PathBehind(std::string_view scheme, std::string_view word) {
  return word.starts_with(scheme) ? word.substr(scheme.size()) : std::string_view();
}

bool NamesDatabase(std::string_view word) { return word == kOdbc || !PathBehind(kSqlite, word).empty(); }

bool NamesImap(std::string_view word) { return word.starts_with("imap://") || word.starts_with("imaps://"); }

bool NamesMail(std::string_view word) { return word.empty() || !PathBehind(kMaildir, word).empty() || NamesImap(word); }

std::string Rebased(std::string_view word, const std::string& folder) {
  for (const std::string_view scheme : {kSqlite, kMaildir}) {
    const std::string_view path = PathBehind(scheme, word);
    if (!path.empty()) return std::string(scheme) + (std::filesystem::path(folder) / path).lexically_normal().string();
  }
  return std::string(word);
}

}  // namespace kalvo::host
