#pragma once

#include <string>
#include <string_view>

namespace kalvo::mail {

// Whether the bytes are UTF-8 without a fault.
bool IsUtf8(std::string_view bytes);

// Text in a charset that a message names, as UTF-8; each bad byte becomes U+FFFD. Names that mailers use wrongly mean
// what they are used for ("gb2312" is GB 18030, "iso-8859-1" Windows-1252). Text in no charset, or one that nobody
// knows, is UTF-8, and where it is not, Windows-1252.
std::string ToUtf8(std::string_view bytes, std::string_view charset);

}  // namespace kalvo::mail
