#include "host/script/page/page_paths.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>
#include <vector>

#include "kalvo/platform/append.h"

namespace kalvo::host {

std::optional<std::string> PathBelowRoot(std::string_view base, std::string_view path) {
  std::vector<std::string_view> parts;
  const std::string whole = Built([&](std::string& out) { Append(out, base, '/', path); });
  if (whole.find('\0') != std::string::npos) return std::nullopt;
  std::size_t from = 0;
  while (from <= whole.size()) {
    const std::size_t to = std::min(whole.find_first_of("/\\", from), whole.size());
    const std::string_view part = std::string_view(whole).substr(from, to - from);
    from = to + 1;
    if (part.empty() || part == ".") continue;
    if (part != "..") {
      parts.push_back(part);
    } else if (parts.empty()) {
      return std::nullopt;
    } else {
      parts.pop_back();
    }
  }
  if (parts.empty()) return std::nullopt;
  std::string below;
  for (const std::string_view part : parts) Append(below, below.empty() ? "" : "/", part);
  return below;
}

std::optional<std::string> MappedPath(const SitePlace& place, std::string_view path) {
  const bool fromRoot = !path.empty() && (path.front() == '/' || path.front() == '\\');
  if (fromRoot && path.size() == 1) return place.root.string() + "/";
  const std::string folder = fromRoot ? std::string() : place.page.substr(0, place.page.find_last_of('/') + 1);
  const auto below = PathBelowRoot(folder, path);
  if (!below) return std::nullopt;
  return (place.root / *below).string();
}

SiteFile ReadSiteFile(const SitePlace& place, std::string_view path, std::size_t most, std::string& text) {
  namespace fs = std::filesystem;
  const auto file = MappedPath(place, path);
  if (!file) return SiteFile::Outside;
  std::error_code problem;
  const fs::path real = fs::canonical(*file, problem);
  if (problem || !fs::is_regular_file(real, problem)) return SiteFile::Missing;
  const fs::path below = real.lexically_relative(place.root);
  if (below.empty() || *below.begin() == "..") return SiteFile::Outside;
  if (fs::file_size(real, problem) > most) return SiteFile::TooLarge;
  std::ifstream stream(real, std::ios::binary);
  if (!stream) return SiteFile::Missing;
  text.assign(std::istreambuf_iterator<char>(stream), {});
  return SiteFile::Read;
}

}  // namespace kalvo::host
