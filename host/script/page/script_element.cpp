#include "host/script/page/script_element.h"

#include <algorithm>

#include "kalvo/platform/conversion.h"

namespace kalvo::host {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

std::size_t FindAnyCase(std::string_view text, std::string_view lower, std::size_t from) {
  for (std::size_t at = text.find('<', from); at != std::string::npos; at = text.find('<', at + 1)) {
    if (EqualsIgnoringAsciiCase(text.substr(at, lower.size()), lower)) return at;
  }
  return std::string::npos;
}

}  // namespace

std::size_t FindServerScript(std::string_view text, std::size_t from) {
  constexpr std::string_view kTag = "<script";
  for (std::size_t at = FindAnyCase(text, kTag, from); at != std::string::npos; at = FindAnyCase(text, kTag, at + 1)) {
    const std::size_t end = text.find('>', at);
    if (end == std::string::npos) break;
    const std::string_view tag = text.substr(at, end - at);
    const auto where = AttributeOf(tag, "runat");
    if (where && EqualsIgnoringAsciiCase(*where, "server")) return at;
  }
  return text.size();
}

std::size_t FindEndTag(std::string_view text, std::size_t from) {
  if (text.substr(0, from).ends_with('/')) return from;
  return FindAnyCase(text, "</script", from);
}

std::optional<std::string> AttributeOf(std::string_view tag, std::string_view name) {
  for (std::size_t at = tag.find_first_of(kBlanks); at != std::string::npos; at = tag.find_first_of(kBlanks, at)) {
    at = tag.find_first_not_of(kBlanks, at);
    if (at == std::string::npos) break;
    const std::size_t end = std::min(tag.find_first_of(" \t\r\n=", at), tag.size());
    const bool isIt = EqualsIgnoringAsciiCase(tag.substr(at, end - at), name);
    at = end;
    const std::size_t equals = tag.find_first_not_of(kBlanks, end);
    if (equals == std::string::npos || tag[equals] != '=') continue;
    const std::size_t first = tag.find_first_not_of(kBlanks, equals + 1);
    if (first == std::string::npos) break;
    const bool quoted = tag[first] == '"' || tag[first] == '\'';
    const std::size_t start = quoted ? first + 1 : first;
    const std::size_t stop = quoted ? tag.find(tag[first], start) : tag.find_first_of(" \t\r\n%>/", start);
    if (isIt) return std::string(tag.substr(start, std::min(stop, tag.size()) - start));
    if (stop == std::string::npos) break;
    at = stop + (quoted ? 1 : 0);
    if (at >= tag.size()) break;
  }
  return std::nullopt;
}

}  // namespace kalvo::host
