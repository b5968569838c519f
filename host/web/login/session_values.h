#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kalvo/platform/value.h"

namespace kalvo::web::login {

// How much one session may hold.
inline constexpr std::size_t kMostValues = 256;
inline constexpr std::size_t kLongestName = 256;           // bytes
inline constexpr std::size_t kLargestSession = 64 * 1024;  // bytes, of all names and values together

// The values of a session, each of its own type, by lower-case name.
class SessionValues {
 public:
  Value Get(std::string_view name) const;

  // Empty removes the value. Fails with 13 for anything but a text, number, boolean, date or null, and with
  // 0x80004005 for what would outgrow the limits; the values are unharmed then.
  void Set(std::string_view name, const Value& value);

  std::vector<std::string> Names() const;

  void Clear() { values_.clear(); }

  // The values as bytes, and back; nothing for bytes that were not made so.
  std::string Packed() const;
  static std::optional<SessionValues> Unpacked(std::string_view bytes);

 private:
  std::map<std::string, Value, std::less<>> values_;
};

}  // namespace kalvo::web::login
