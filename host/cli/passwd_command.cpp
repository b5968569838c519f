#include <termios.h>
#include <unistd.h>

#include <iostream>
#include <string>

#include "host/cli/command_line.h"
#include "host/cli/command_trail.h"
#include "host/cli/commands.h"
#include "host/parts/setting_error.h"
#include "host/web/login/password.h"
#include "host/web/login/password_rules.h"
#include "host/web/login/session_store.h"
#include "host/web/login/users.h"
#include "host/web/settings.h"

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

std::string ReadPassword(const std::string& account) {
  const bool terminal = isatty(STDIN_FILENO) == 1;
  std::string password = terminal ? AskFor("Password") : ReadLine();
  if (terminal && AskFor("Again") != password) throw SettingError("the two passwords differ");
  if (const std::string wrong = web::login::WrongWithPassword(password, account); !wrong.empty()) {
    throw SettingError(wrong);
  }
  return password;
}

// What the settings' file says, where the command names one.
std::optional<web::Settings> SettingsOf(const PasswdArguments& arguments) {
  if (!arguments.config) return std::nullopt;
  web::Settings settings = web::ReadSettings(*arguments.config);
  web::CompleteFolders(settings);
  return settings;
}

std::filesystem::path UsersFileOf(const PasswdArguments& arguments, const std::optional<web::Settings>& settings) {
  if (arguments.users) return *arguments.users;
  if (!settings) throw SettingError("--users FILE or --config FILE is needed");
  if (settings->users.empty()) throw SettingError(*arguments.config + " names no users file");
  return settings->users;
}

int EndSessions(const web::Settings& settings, const std::string& account) {
  const int ended = web::login::SessionStore::End(settings.sessions, account);
  std::cout << "ended " << ended << (ended == 1 ? " session" : " sessions") << " in " << settings.sessions.string()
            << '\n';
  return kDone;
}

// Known to the audit log where the command is given the settings; a server that runs notes the changed file itself.
void Note(const std::optional<web::Settings>& settings, const std::string& account, const char* change) {
  if (!settings) return;
  CommandTrail(*settings).Get().Note(audit::Event::UsersChanged, CommandTrail::Caller(),
                                     {{"account", account}, {"change", change}});
}

}  // namespace

int RunPasswd(const PasswdArguments& arguments) {
  const std::optional<web::Settings> settings = SettingsOf(arguments);
  if (arguments.endSessions && arguments.name.empty()) return EndSessions(*settings, "");
  const auto account = web::login::AccountNamed(arguments.name);
  if (!account) {
    throw SettingError("\"" + arguments.name +
                       "\" is not a user's name; alice or DOMAIN\\alice is, of letters, digits, " +
                       "\".\", \"-\" and \"_\"");
  }
  if (arguments.endSessions) return EndSessions(*settings, *account);
  const std::filesystem::path file = UsersFileOf(arguments, settings);
  web::login::UsersFile users(file);
  if (arguments.remove) {
    if (!users.Remove(*account)) throw SettingError("there is no user " + *account + " in " + file.string());
    Note(settings, *account, "removed");
    std::cout << "removed " << *account << '\n';
    return kDone;
  }
  const std::string hash =
      arguments.noPassword ? std::string(web::login::kNoPassword) : web::login::HashPassword(ReadPassword(*account));
  users.Put({*account, arguments.administrator, arguments.drillDown, hash});
  Note(settings, *account, arguments.administrator ? "written, an administrator" : "written");
  std::cout << "wrote " << *account << '\n';
  return kDone;
}

}  // namespace kalvo::host
