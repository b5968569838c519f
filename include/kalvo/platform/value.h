#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace kalvo {

// Anything that a script, a page or another object may hold by reference. Every public class and every
// interface of the platform is one, so that whoever is handed a plain reference can keep it alive.
class Object : public std::enable_shared_from_this<Object> {
 public:
  virtual ~Object() = default;

 protected:
  Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
};

// Never set: an argument that was left out, a session value that nobody wrote.
struct Empty {
  bool operator==(const Empty&) const = default;
};

// Known to have no value: a NULL of the database, `null` of a script.
struct Null {
  bool operator==(const Null&) const = default;
};

// A moment as days since 1899-12-30; the fraction is the time of day. Not a number for an invalid date: reading
// it fails with 13.
struct Date {
  double serial = 0;
  bool operator==(const Date&) const = default;
};

using Bytes = std::vector<std::uint8_t>;

// A loosely typed value. Text is UTF-8. Hot paths have typed overloads and never build one.
using Value = std::variant<Empty, Null, bool, std::int32_t, std::int64_t, double, Date, std::string, Bytes,
                           std::shared_ptr<Object>>;

inline bool IsEmpty(const Value& value) { return std::holds_alternative<Empty>(value); }
inline bool IsNull(const Value& value) { return std::holds_alternative<Null>(value); }

}  // namespace kalvo
