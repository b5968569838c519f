#pragma once

#include <iosfwd>
#include <string>

namespace kalvo::attack {

struct AttackOptions {
  std::string url;     // of the system: "https://console.example", with or without the console's path
  std::string cookie;  // the Cookie header of a signed-in visitor, so that pages are asked too; "" for a stranger
};

// Asks an installed system what it should refuse, and writes a line for each finding and a last one with the numbers.
// Asks nothing that would change the system if it gave in, and at most ten times in a second. 0 when nothing was
// found, 1 when something was or the system did not answer. Fails with SettingError for what is not an address.
int RunAttack(const AttackOptions& options, std::ostream& out);

}  // namespace kalvo::attack
