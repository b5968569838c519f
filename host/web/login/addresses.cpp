#include "host/web/login/addresses.h"

#include <algorithm>

#include "host/script/text/text.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/encoding.h"

namespace kalvo::web::login {
namespace {

constexpr std::size_t kLongestAddress = 2048;  // encoded, it still fits into a sign-in's form

bool IsAddressCharacter(char c) { return c > ' ' && c < 0x7f && c != '\\' && c != '"' && c != '<' && c != '>'; }

// A path in whose parts, however they are encoded, nobody goes up or hides a separator.
bool StaysBelow(std::string_view path) {
  const std::string decoded = host::UrlDecoded(path);
  return decoded.find("/.") == std::string::npos && decoded.find("//") == std::string::npos &&
         decoded.find('\\') == std::string::npos &&
         std::none_of(decoded.begin(), decoded.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; });
}

}  // namespace

bool IsOfThisConsole(std::string_view address) {
  if (!address.starts_with(kConsole) || address.size() > kLongestAddress) return false;
  if (!std::all_of(address.begin(), address.end(), IsAddressCharacter)) return false;
  const std::string_view path = address.substr(0, address.find_first_of("?#"));
  return StaysBelow(path) && !EqualsIgnoringAsciiCase(path, kSignInPage) &&
         !EqualsIgnoringAsciiCase(path, kSignOutPage);
}

std::string SignInAddress(std::string_view path, std::string_view query) {
  std::string address(path);
  if (!query.empty()) address.append("?").append(query);
  std::string signIn(kSignInPage);
  if (IsOfThisConsole(address) && !EqualsIgnoringAsciiCase(address, kStartPage)) {
    signIn += "?Return=";
    AppendUrlEncoded(signIn, address);
  }
  return signIn;
}

}  // namespace kalvo::web::login
