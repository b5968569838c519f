#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kalvo {

// The field names of a result, looked up without regard to case. A probe costs one pass over the name and
// allocates nothing.
class FieldMap {
 public:
  void Clear();

  // Adds the next field; its number is the count before the call. Fails with 457 when the name is there already.
  void Add(std::string_view name);

  std::optional<std::int32_t> Find(std::string_view name) const;

  std::int32_t Count() const { return static_cast<std::int32_t>(names_.size()); }

 private:
  std::size_t Probe(std::string_view name) const;  // the slot that holds the name, or the empty one it belongs in
  void Grow();

  std::vector<std::string> names_;   // in lower case
  std::vector<std::int32_t> slots_;  // a field number, or -1; a power of two of them, at most half of them full
};

}  // namespace kalvo
