#pragma once

#include <string>
#include <string_view>

namespace kalvo::audit {

// Appends well-formed text as a JSON string. What could be mistaken is written as "\uXXXX": control characters of every
// kind, line separators, and the marks that turn the direction of a text around.
void AppendJsonText(std::string& out, std::string_view text);

}  // namespace kalvo::audit
