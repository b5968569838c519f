#include "host/web/login/password_change.h"

#include "host/parts/setting_error.h"
#include "host/script/text/named_values.h"
#include "host/web/log.h"
#include "host/web/login/kept_folder.h"
#include "host/web/login/password.h"
#include "host/web/login/password_rules.h"
#include "host/web/login/throttle.h"
#include "host/web/login/users.h"

namespace kalvo::web::login {
namespace {

std::string Field(std::string_view form, std::string_view name) { return host::FirstValue(form, name).value_or(""); }

// What is wrong with the new password before anybody looks at the old one; "" when nothing is.
std::string WrongWithChoice(std::string_view old, std::string_view chosen, std::string_view again,
                            std::string_view account) {
  if (chosen != again) return "differ";
  if (const std::string wrong = WrongWithPassword(chosen, account); !wrong.empty()) return "no " + wrong;
  return chosen == old ? "no the new password is the old one" : "";
}

}  // namespace

std::string ChangePassword(UsersFile& users, Throttle& throttle, const Log& log, const Changer& who,
                           std::string_view form) {
  const std::string old = Field(form, "OldPassword"), chosen = Field(form, "NewPassword");
  std::string wrong = WrongWithChoice(old, chosen, Field(form, "RepeatedPassword"), who.account);
  if (!wrong.empty()) return wrong;
  try {
    const std::int64_t wait = throttle.Begin(who.account, who.address, who.device);
    if (wait > 0) return "wait " + std::to_string(wait);
    const std::optional<User> user = users.Find(who.account);
    if (!user || !PasswordFits(user->hash, old)) {
      log.Write("change of password refused: " + InLog(who.account) + " from " + who.address);
      return "wrong";
    }
    throttle.Succeeded(who.account, who.address, who.device);
    return users.ChangeHash(who.account, user->hash, HashPassword(chosen)) ? "changed" : "wrong";
  } catch (const host::SettingError& error) {
    log.Write("the password of " + InLog(who.account) + " was not changed: " + error.what());
  } catch (const NotKept& error) {
    log.Write("the password of " + InLog(who.account) + " was not changed: " + error.what());
  }
  return "fixed";
}

}  // namespace kalvo::web::login
