#pragma once

#include <string>
#include <string_view>

namespace kalvo::host {

// Appends text with & < > " written as character references; every other byte is kept.
void AppendHtmlEncoded(std::string& out, std::string_view text);

// Appends text for a query string: ASCII letters and digits as they are, a blank as "+", every other byte as "%XX"
// in upper-case hexadecimal. "a.b-c_d" gives "a%2Eb%2Dc%5Fd".
void AppendUrlEncoded(std::string& out, std::string_view text);

}  // namespace kalvo::host
