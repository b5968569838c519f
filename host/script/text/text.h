#pragma once

#include <string>
#include <string_view>

namespace kalvo::host {

// Text from outside as well-formed UTF-8: every ill-formed sequence becomes one U+FFFD.
std::string WellFormed(std::string_view bytes);

// The engine keeps text as CESU-8: UTF-8 of UTF-16 units, so a character outside of the basic plane is a pair of
// three-byte sequences. Both directions append; ill-formed input becomes U+FFFD.
void AppendForEngine(std::string& out, std::string_view utf8);
void AppendFromEngine(std::string& out, std::string_view cesu8);

// A query string's or a form's text: "+" is a blank, "%XX" a byte; a "%" without two digits stands for itself.
std::string UrlDecoded(std::string_view text);

}  // namespace kalvo::host
