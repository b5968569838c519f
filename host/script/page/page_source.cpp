#include "host/script/page/page_source.h"

#include <algorithm>

namespace kalvo::host {

LinePlace PageSource::PlaceOf(int line) const {
  if (line < 1 || lines.empty()) return {0, 0};
  if (static_cast<std::size_t>(line) <= lines.size()) return lines[static_cast<std::size_t>(line) - 1];
  const auto own = std::find_if(lines.rbegin(), lines.rend(), [](const LinePlace& place) { return place.file == 0; });
  return own == lines.rend() ? lines.back() : *own;
}

std::vector<CodePlace> PageSource::IncludesOf(const std::string& file) const {
  std::vector<CodePlace> includes;
  const auto found = std::find(files.begin(), files.end(), file);
  if (found == files.end()) return includes;
  LinePlace from = includedFrom[static_cast<std::size_t>(found - files.begin())];
  for (; from.line > 0; from = includedFrom[from.file]) {
    includes.push_back({"", files[from.file], static_cast<int>(from.line)});
  }
  return includes;
}

}  // namespace kalvo::host
