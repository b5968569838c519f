#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kalvo::host {

// Named values in the order of their first appearance, spelled as they first came; names are matched without
// regard to case, and a name may have several values. Names come from outside: the map is an ordered one, because
// anybody can make names that share a hash.
class NamedValues {
 public:
  // Of "a=1&b=2&a=3": `x` without "=" is the name x with an empty value, empty parts are skipped.
  static NamedValues FromQuery(std::string_view text);
  // Of a Cookie header: "a=1; b=2".
  static NamedValues FromCookies(std::string_view header);

  void Add(std::string_view name, std::string value);
  const std::vector<std::string>& Keys() const { return keys_; }

  // The values of a name; none when it is absent.
  const std::vector<std::string>& Of(std::string_view name) const;

 private:
  std::vector<std::string> keys_;
  std::vector<std::vector<std::string>> values_;
  std::map<std::string, std::size_t> places_;  // by the name in lower case
};

// The first value of a name in an URL-encoded text, found without taking the rest of the text apart.
std::optional<std::string> FirstValue(std::string_view text, std::string_view name);

// "a, b, c"
std::string JoinedValues(const std::vector<std::string>& values);

}  // namespace kalvo::host
