#pragma once

#include <string>
#include <string_view>

namespace kalvo::web::login {

// The longest password that is taken, in bytes.
inline constexpr std::size_t kLongestPassword = 1024;

// A hash like those that `HashPassword` makes, of bytes that nobody knows.
inline constexpr std::string_view kNobodysHash =
    "$argon2id$v=19$m=65536,t=2,p=1$tR08s9hLmznPEgDO/Cmc0A$GwtvNMrGjUdZ4Ub3IYj/zCzFVFbfDzqEWHVgqYLU3Bo";

// An argon2id hash with a salt of its own, as one word of printable characters. Takes 64 MiB and some 60 ms.
std::string HashPassword(std::string_view password);

// Whether the password is the one that was hashed. Takes as long for a wrong one as for the right one.
bool PasswordFits(std::string_view hash, std::string_view password);

// Takes as long as `PasswordFits`, so that nobody learns by the clock which users there are.
void PretendToCheck(std::string_view password);

// Whether it is a hash that `HashPassword` makes.
bool IsPasswordHash(std::string_view text);

// 256 random bits as 64 hexadecimal digits.
std::string NewToken();
bool IsToken(std::string_view text);

// A short name for a text, from which the text cannot be found out: 64 hexadecimal digits.
std::string Fingerprint(std::string_view text);

}  // namespace kalvo::web::login
