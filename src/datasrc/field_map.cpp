#include "datasrc/field_map.h"

#include <algorithm>

#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"

namespace kalvo {

namespace {

constexpr std::size_t kFewestSlots = 16;
constexpr std::int32_t kFree = -1;

// FNV-1a over the name with its ASCII letters in lower case. `seen` gets every bit of it.
std::size_t AsciiHash(std::string_view name, unsigned& seen) {
  std::uint64_t hash = 14695981039346656037u;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    const bool upper = byte >= 'A' && byte <= 'Z';
    hash = (hash ^ (upper ? byte + ('a' - 'A') : byte)) * 1099511628211u;
    seen |= byte;
  }
  return static_cast<std::size_t>(hash ^ (hash >> 32));
}

// The same for names that are equal without regard to case.
std::size_t Hash(std::string_view name) {
  unsigned seen = 0;
  const std::size_t hash = AsciiHash(name, seen);
  return seen < 0x80 ? hash : AsciiHash(ToLower(name), seen);
}

}  // namespace

void FieldMap::Clear() {
  names_.clear();
  slots_.clear();
}

void FieldMap::Add(std::string_view name) {
  if (slots_.size() < 2 * (names_.size() + 1)) Grow();
  const std::size_t slot = Probe(name);
  if (slots_[slot] != kFree) throw KeyAlreadyAssociated();
  slots_[slot] = Count();
  names_.push_back(ToLower(name));
}

std::optional<std::int32_t> FieldMap::Find(std::string_view name) const {
  if (slots_.empty()) return std::nullopt;
  const std::int32_t number = slots_[Probe(name)];
  if (number == kFree) return std::nullopt;
  return number;
}

std::size_t FieldMap::Probe(std::string_view name) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t slot = Hash(name) & mask;
  while (slots_[slot] != kFree && !EqualsIgnoringCase(names_[static_cast<std::size_t>(slots_[slot])], name)) {
    slot = (slot + 1) & mask;
  }
  return slot;
}

void FieldMap::Grow() {
  slots_.assign(std::max(kFewestSlots, 2 * slots_.size()), kFree);
  for (std::size_t i = 0; i < names_.size(); ++i) slots_[Probe(names_[i])] = static_cast<std::int32_t>(i);
}

}  // namespace kalvo
