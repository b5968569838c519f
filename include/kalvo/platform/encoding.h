#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kalvo {

// Appends text with & < > " written as character references; every other byte is kept.
void AppendHtmlEncoded(std::string& out, std::string_view text);

// Appends text for a query string: ASCII letters and digits as they are, a blank as "+", every other byte as "%XX"
// in upper-case hexadecimal. "a.b-c_d" gives "a%2Eb%2Dc%5Fd".
void AppendUrlEncoded(std::string& out, std::string_view text);

// The same into memory, for texts of rows. There has to be room for `kHtmlGrowth` or `kUrlGrowth` bytes for each of
// the text, and `kEncodingSlack` behind them, which may be overwritten. Each answers where its text ends.
inline constexpr std::size_t kHtmlGrowth = 6;
inline constexpr std::size_t kUrlGrowth = 3;
inline constexpr std::size_t kEncodingSlack = 32;
char* WriteHtmlEncoded(char* to, std::string_view text);
char* WriteUrlEncoded(char* to, std::string_view text);

}  // namespace kalvo
