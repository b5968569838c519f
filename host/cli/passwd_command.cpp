#include <termios.h>
#include <unistd.h>

#include <iostream>
#include <string>

#include "host/cli/arguments.h"
#include "host/cli/commands.h"
#include "host/parts/setting_error.h"
#include "host/web/login/password.h"
#include "host/web/login/users.h"

namespace kalvo::host {
namespace {

using web::login::User;

// A terminal that does not show what is typed.
class SilentTerminal {
 public:
  SilentTerminal() {
    if (tcgetattr(STDIN_FILENO, &before_) != 0) throw SettingError("the terminal cannot be silenced");
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
  }
  ~SilentTerminal() { tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_); }
  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;

 private:
  termios before_{};
};

std::string ReadLine() {
  std::string line;
  if (!std::getline(std::cin, line)) throw SettingError("no password was given");
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

std::string AskFor(const std::string& what) {
  std::cerr << what << ": " << std::flush;
  const SilentTerminal silent;
  std::string line = ReadLine();
  std::cerr << '\n';
  return line;
}

std::string ReadPassword() {
  const bool terminal = isatty(STDIN_FILENO) == 1;
  std::string password = terminal ? AskFor("Password") : ReadLine();
  if (terminal && AskFor("Again") != password) throw SettingError("the two passwords differ");
  if (password.size() < web::login::kShortestPassword || password.size() > web::login::kLongestPassword) {
    throw SettingError("a password has from " + std::to_string(web::login::kShortestPassword) + " to " +
                       std::to_string(web::login::kLongestPassword) + " bytes");
  }
  return password;
}

}  // namespace

int RunPasswd(const PasswdArguments& arguments) {
  const auto account = web::login::AccountNamed(arguments.name);
  if (!account) {
    throw SettingError("\"" + arguments.name + "\" is no user's name; alice or DOMAIN\\alice is, of letters, digits, " +
                       "\".\", \"-\" and \"_\"");
  }
  web::login::UsersFile users(arguments.users);
  if (arguments.remove) {
    if (!users.Remove(*account)) throw SettingError("there is no user " + *account + " in " + arguments.users);
    std::cout << "removed " << *account << '\n';
    return kDone;
  }
  users.Put({*account, arguments.administrator, arguments.drillDown, web::login::HashPassword(ReadPassword())});
  std::cout << "wrote " << *account << '\n';
  return kDone;
}

}  // namespace kalvo::host
