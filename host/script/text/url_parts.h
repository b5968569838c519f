#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace kalvo::host {

// Hands over each part of "a=1&b=2" or "a=1; b=2" in order, still encoded; empty parts are none.
template <typename Take>
void ForEachPart(std::string_view text, char separator, Take&& take) {
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t to = std::min(text.find(separator, from), text.size());
    if (to > from) take(text.substr(from, to - from));
    from = to + 1;
  }
}

inline std::string_view KeyOf(std::string_view part) { return part.substr(0, part.find('=')); }

// What stands behind the "="; nothing where there is none.
inline std::string_view ValueOf(std::string_view part) {
  const std::size_t equals = part.find('=');
  return equals == std::string::npos ? std::string_view() : part.substr(equals + 1);
}

}  // namespace kalvo::host
