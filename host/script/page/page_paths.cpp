#include "host/script/page/page_paths.h"

#include <algorithm>
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

std::optional<std::string> MappedPath(const PagePlace& place, std::string_view path) {
  const bool fromRoot = !path.empty() && (path.front() == '/' || path.front() == '\\');
  if (fromRoot && path.size() == 1) return place.root.string() + "/";
  const std::string folder = fromRoot ? std::string() : place.page.substr(0, place.page.find_last_of('/') + 1);
  const auto below = PathBelowRoot(folder, path);
  if (!below) return std::nullopt;
  return (place.root / *below).string();
}

}  // namespace kalvo::host
