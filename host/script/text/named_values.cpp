#include "host/script/text/named_values.h"

#include "host/script/text/text.h"
#include "host/script/text/url_parts.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::host {
namespace {

void AddPart(NamedValues& names, std::string_view part) {
  names.Add(UrlDecoded(KeyOf(part)), UrlDecoded(ValueOf(part)));
}

}  // namespace

NamedValues NamedValues::FromQuery(std::string_view text) {
  NamedValues names;
  ForEachPart(text, '&', [&](std::string_view part) { AddPart(names, part); });
  return names;
}

NamedValues NamedValues::FromCookies(std::string_view header) {
  NamedValues names;
  ForEachPart(header, ';', [&](std::string_view part) {
    const std::size_t start = part.find_first_not_of(" \t");
    if (start == std::string::npos) return;
    part = part.substr(start, part.find_last_not_of(" \t") - start + 1);
    AddPart(names, part);
  });
  return names;
}

void NamedValues::Add(std::string_view name, std::string value) {
  const auto [place, isNew] = places_.try_emplace(ToLower(name), keys_.size());
  if (isNew) {
    keys_.emplace_back(name);
    values_.emplace_back();
  }
  values_[place->second].push_back(std::move(value));
}

const std::vector<std::string>& NamedValues::Of(std::string_view name) const {
  static const std::vector<std::string> kNone;
  const auto found = places_.find(ToLower(name));
  return found == places_.end() ? kNone : values_[found->second];
}

std::optional<std::string> FirstValue(std::string_view text, std::string_view name) {
  std::optional<std::string> found;
  ForEachPart(text, '&', [&](std::string_view part) {
    const std::string_view key = KeyOf(part);
    if (found || key.size() > 3 * name.size()) return;  // every byte of a name is one byte, or three
    if (EqualsIgnoringCase(UrlDecoded(key), name)) found = UrlDecoded(ValueOf(part));
  });
  return found;
}

std::string JoinedValues(const std::vector<std::string>& values) {
  std::string text;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) text += ", ";
    text += values[i];
  }
  return text;
}

}  // namespace kalvo::host
