#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kalvo::maildir {

// How a server that saves space has stored a message.
enum class Packing { None, Gzip, Other };

Packing PackingOf(std::string_view stored);

// The beginning of what is packed with gzip, at most so many bytes; nothing where it is damaged from the first byte.
std::optional<std::string> Unpacked(std::string_view stored, std::size_t limit);

}  // namespace kalvo::maildir
