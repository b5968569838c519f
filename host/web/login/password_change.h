#pragma once

#include <string>
#include <string_view>

namespace kalvo::web {
class Log;
}

namespace kalvo::web::login {

class Throttle;
class UsersFile;

// Who changes a password, her own, and from where.
struct Changer {
  std::string account, address, device;
};

// Gives a user another password by the fields "OldPassword", "NewPassword" and "RepeatedPassword" of her form, and
// answers what came of it as a word for the page that shows it:
//
//   "changed"     all her sessions are over
//   "differ"      the new one was typed in two ways
//   "no ..."      the new one is not taken, and why
//   "wrong"       the old one is another
//   "wait N"      there were too many wrong ones; it is heard again after so many seconds
//   "fixed"       this server may not write the users file; the log says why
//
// Whoever found a browser open guesses the old one no faster than at the sign-in. Nothing else of the user changes,
// also where somebody edits the file meanwhile.
std::string ChangePassword(UsersFile& users, Throttle& throttle, const Log& log, const Changer& who,
                           std::string_view form);

}  // namespace kalvo::web::login
