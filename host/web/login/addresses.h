#pragma once

#include <string>
#include <string_view>

namespace kalvo::web::login {

inline constexpr std::string_view kConsole = "/KalvoforExchange/";
inline constexpr std::string_view kStartPage = "/KalvoforExchange/Default.asp";
inline constexpr std::string_view kSignInPage = "/KalvoforExchange/SignIn.asp";
inline constexpr std::string_view kPasswordPage = "/KalvoforExchange/Configuration/Password.asp";
inline constexpr std::string_view kSignOutPage = "/KalvoforExchange/SignOut.asp";

// Whether the address is one of this console that a browser may be sent on to: a path below the console's root,
// without a way out of it, in the characters of an address, and not the sign-in or the sign-out.
bool IsOfThisConsole(std::string_view address);

// The sign-in page, with where to go on from there.
std::string SignInAddress(std::string_view path, std::string_view query);

}  // namespace kalvo::web::login
