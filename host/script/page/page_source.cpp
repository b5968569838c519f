#include "host/script/page/page_source.h"

#include <algorithm>

namespace kalvo::host {

LinePlace PageSource::PlaceOf(int line) const {
  if (line < 1 || lines.empty()) return {0, 0};
  if (static_cast<std::size_t>(line) <= lines.size()) return lines[static_cast<std::size_t>(line) - 1];
  const auto own = std::find_if(lines.rbegin(), lines.rend(), [](const LinePlace& place) { return place.file == 0; });
  return own == lines.rend() ? lines.back() : *own;
}

}  // namespace kalvo::host
