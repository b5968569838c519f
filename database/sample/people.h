#pragma once

#include <cstdint>
#include <string>

namespace kalvo::sample {

// Names of people. Person i has a display name and an account name that nobody else has, up to a hundred million.
std::string PersonName(std::uint32_t person);     // "Kathleen M. O'Brien"
std::string PersonAccount(std::uint32_t person);  // "kathleen.m.obrien"

// Persons below this number have a plain first and last name, all different.
std::uint32_t PlainNames();

}  // namespace kalvo::sample
