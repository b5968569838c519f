#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/audit/trail.h"
#include "host/script/page/page_request.h"
#include "host/script/page/page_result.h"
#include "host/script/page/page_session.h"
#include "host/web/login/session_store.h"
#include "host/web/login/throttle.h"
#include "host/web/login/users.h"

namespace kalvo::web::login {

// The largest form that signs somebody in, in bytes: a stranger may send no more. nginx refuses larger ones before.
inline constexpr std::size_t kLargestSignIn = 8 * 1024;

struct GateSettings {
  std::filesystem::path users;     // the users file
  std::filesystem::path sessions;  // a private folder
  Lifetimes lifetimes;
  std::chrono::milliseconds patience{10'000};  // for another page of the same session
  Waiting waiting{};                           // and who may wait for it
};

// A page may run: with this session, for this user ("" on the sign-in page), with these variables added.
struct Admission {
  std::unique_ptr<host::PageSession> session;
  std::string logon;
  host::NamedTexts variables;
  std::string mark = {};  // a name for the session that may be known; "" where there is none
};

// No page runs; this is the answer.
struct Answer {
  host::PageHead head;
};

// Stands before every page: knows by a cookie who asks, lets nobody but the signed-in pass to any page but the
// sign-in page, and does the signing in and out itself.
//
// Who comes by the proxy's socket is whom the proxy names in "KALVO_PROXY_USER", with the rights of the users file:
// nobody signs in there, and "AUTH_TYPE" is "Proxy". nginx gives that variable for that socket alone.
//
// The cookie is the gate's own business: pages do not see it. To the sign-in page the variable "KALVO_SIGN_IN" says
// why it is shown again: "wrong", "wait N" with a number of seconds, or "full" when no session can be kept. "AUTH_TYPE"
// is "Form" on every page. The form of the password page is taken here too, and "KALVO_PASSWORD" tells that page what
// came of it, in the words of `ChangePassword`.
class Gate {
 public:
  // The maker, the log and the trail outlive the gate. Fails with SettingError.
  Gate(const GateSettings& settings, const host::LiveDrillerMaker& makeDriller, const Log& log, audit::Trail& trail);

  // `page` is the page's path below the site's root. What the page is not meant to see is taken out of the request.
  // Fails with SettingError when users or sessions cannot be read; throws SessionBusy.
  std::variant<Admission, Answer> Admit(std::string_view page, host::PageRequest& request);

 private:
  std::variant<Admission, Answer> SignIn(host::PageRequest& request, const std::vector<std::string>& oldSessions,
                                         std::string_view device);
  Answer Welcome(const User& user, const host::PageRequest& request, const std::string& back,
                 const std::vector<std::string>& oldSessions);
  std::variant<Admission, Answer> AdmitProxied(std::string_view named, std::string_view page,
                                               host::PageRequest& request);
  std::variant<Admission, Answer> OwnPassword(host::PageRequest& request, std::unique_ptr<FileSession> session,
                                              const std::vector<std::string>& ids, const std::string& device);
  Answer AfterChange(const host::PageRequest& request, const std::string& account, const std::vector<std::string>& ids);
  Answer SignOut(const host::PageRequest& request, const std::vector<std::string>& ids);
  Admission SignInPage(std::string why) const;
  std::optional<User> Checked(const std::optional<std::string>& account, std::string_view password) const;
  std::unique_ptr<FileSession> SessionOf(const std::vector<std::string>& ids);

  GateSettings settings_;
  const Log& log_;
  audit::Trail& trail_;
  UsersFile users_;
  SessionStore sessions_;
  Throttle throttle_;
};

}  // namespace kalvo::web::login
