#pragma once

#include <string>
#include <string_view>

namespace kalvo::web::login {

// The shortest password that may be chosen, in characters.
inline constexpr std::size_t kShortestPassword = 12;

// What is wrong with a password that somebody chooses for the account, as a sentence without its point; "" when it
// may be taken. Refused are short ones, endless ones, and those that are guessed first: a common word, the account's
// own name or one character, whatever digits and signs stand around it.
std::string WrongWithPassword(std::string_view password, std::string_view account);

}  // namespace kalvo::web::login
