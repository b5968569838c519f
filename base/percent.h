#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kalvo::base {

// A byte as addresses write it: "%" and two hexadecimal digits, capitals.
void AppendPercent(std::string& out, char byte);

// The byte that is written so at a place of the text, digits in either case; nothing where none is.
std::optional<char> PercentAt(std::string_view text, std::size_t at);

// The text with every byte that is written so; nothing where a "%" begins none.
std::optional<std::string> FromPercent(std::string_view text);

}  // namespace kalvo::base
