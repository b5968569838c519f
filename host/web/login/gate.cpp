#include "host/web/login/gate.h"

#include <algorithm>
#include <utility>

#include "host/parts/memory_session.h"
#include "host/script/text/named_values.h"
#include "host/web/acting/sender.h"
#include "host/web/log.h"
#include "host/web/login/addresses.h"
#include "host/web/login/password.h"
#include "host/web/login/password_change.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/text_tools.h"

namespace kalvo::web::login {
namespace {

// Where the connection is encrypted, no other host of the domain and nobody on a plain connection can set them.
struct Cookie {
  std::string_view plain, encrypted;
};
constexpr Cookie kSession{"KalvoSession", "__Host-KalvoSession"};
constexpr Cookie kDevice{"KalvoDevice", "__Host-KalvoDevice"};  // by which a browser is known at the next sign-in
constexpr int kDeviceSeconds = 4 * 7 * 24 * 60 * 60;
constexpr std::size_t kMostCookies = 8;              // of that name that are looked at
constexpr std::string_view kSignIn = "/SignIn.asp";  // below the site's root
constexpr std::string_view kSignOut = "/SignOut.asp";
constexpr std::string_view kProxyUser = "KALVO_PROXY_USER";  // set by nginx for who comes by the proxy's socket
constexpr std::string_view kPassword = "/Configuration/Password.asp";

bool IsEncrypted(const host::PageRequest& request) {
  return EqualsIgnoringAsciiCase(VariableOf(request, "HTTPS"), "on");
}

std::string_view NameOf(const Cookie& cookie, const host::PageRequest& request) {
  return IsEncrypted(request) ? cookie.encrypted : cookie.plain;
}

bool IsOwn(std::string_view name) {
  const auto is = [name](std::string_view own) { return EqualsIgnoringCase(name, own); };
  return is(kSession.plain) || is(kSession.encrypted) || is(kDevice.plain) || is(kDevice.encrypted);
}

// The sessions that the browser names. There may be several: a neighbour in the same domain can set a cookie of that
// name too, and it must not stand before the right one.
std::vector<std::string> SessionIdsOf(const host::PageRequest& request) {
  const host::NamedValues cookies = host::NamedValues::FromCookies(request.cookies);
  std::vector<std::string> ids;
  for (const std::string& value : cookies.Of(NameOf(kSession, request))) {
    if (IsToken(value) && ids.size() < kMostCookies) ids.push_back(value);
  }
  return ids;
}

// What the browser was given at its last sign-in; "" when it shows nothing like that.
std::string DeviceOf(const host::PageRequest& request) {
  const host::NamedValues cookies = host::NamedValues::FromCookies(request.cookies);
  for (const std::string& value : cookies.Of(NameOf(kDevice, request))) {
    if (IsToken(value)) return value;
  }
  return "";
}

std::string WithoutSessionCookie(std::string_view header) {
  std::string kept;
  while (!header.empty()) {
    const std::size_t end = std::min(header.find(';'), header.size());
    const std::string_view cookie = Trimmed(header.substr(0, end), " ");
    header.remove_prefix(std::min(end + 1, header.size()));
    const std::string_view name = cookie.substr(0, cookie.find('='));
    if (IsOwn(name)) continue;
    Append(kept, kept.empty() ? "" : "; ", cookie);
  }
  return kept;
}

void HideSession(host::PageRequest& request) {
  request.cookies = WithoutSessionCookie(request.cookies);
  for (auto& [name, value] : request.serverVariables) {
    if (name == "HTTP_COOKIE") value = request.cookies;
  }
}

std::string CookieOf(const host::PageRequest& request, const Cookie& cookie, std::string_view value,
                     std::string_view path) {
  const bool encrypted = IsEncrypted(request);
  return Built([&](std::string& out) {
    Append(out, NameOf(cookie, request), '=', value, "; Path=", encrypted ? "/" : path, "; HttpOnly; SameSite=Strict");
    if (encrypted) Append(out, "; Secure");
  });
}

std::string SessionCookie(const host::PageRequest& request, std::string_view id) {
  return CookieOf(request, kSession, id, kConsole) + (id.empty() ? "; Max-Age=0" : "");
}

std::string DeviceCookie(const host::PageRequest& request, std::string_view device) {
  return CookieOf(request, kDevice, device, kSignInPage) + "; Max-Age=" + std::to_string(kDeviceSeconds);
}

Answer GoTo(int status, std::string_view reason, std::string address) {
  Answer answer;
  answer.head.status = status;
  answer.head.reason = reason;
  answer.head.headers = {{"Location", std::move(address)}, {"Cache-Control", "no-store"}};
  return answer;
}

Answer Refusal(int status, std::string_view reason) {
  Answer answer;
  answer.head.status = status;
  answer.head.reason = reason;
  return answer;
}

Answer SeeOther(std::string address) { return GoTo(303, "See Other", std::move(address)); }

std::string Field(std::string_view form, std::string_view name) { return host::FirstValue(form, name).value_or(""); }

// Whom the proxy names, taken out of the request; "" where there is no proxy, or it names nobody.
std::string TakeProxyUser(host::PageRequest& request) {
  std::string named;
  std::erase_if(request.serverVariables, [&](auto& variable) {
    if (variable.first != kProxyUser) return false;
    named = std::move(variable.second);
    return true;
  });
  return named;
}

Admission AdmissionOf(std::unique_ptr<FileSession> session, std::string_view type) {
  Admission admission;
  admission.logon = session->Account();
  admission.variables = {{"AUTH_TYPE", std::string(type)}};
  admission.mark = session->Mark();
  admission.session = std::move(session);
  return admission;
}

}  // namespace

Gate::Gate(const GateSettings& settings, const host::LiveDrillerMaker& makeDriller, const Log& log, audit::Trail& trail)
    : settings_(settings),
      log_(log),
      trail_(trail),
      users_(settings.users),
      sessions_(settings.sessions, settings.lifetimes, makeDriller, log, settings.waiting),
      throttle_(settings.sessions / "attempts") {
  users_.CheckModes();
  if (const std::string warning = users_.Warning(); !warning.empty()) log_.Write(warning);
}

std::variant<Admission, Answer> Gate::Admit(std::string_view page, host::PageRequest& request) {
  if (const std::string named = TakeProxyUser(request); !named.empty()) return AdmitProxied(named, page, request);
  const std::vector<std::string> ids = SessionIdsOf(request);
  const std::string device = DeviceOf(request);
  HideSession(request);
  if (page == kSignIn) {
    if (request.method == "POST") return SignIn(request, ids, device);
    return SignInPage("");
  }
  if (page == kSignOut) {
    if (request.method != "POST") return SeeOther(std::string(kConsole));
    return SignOut(request, ids);
  }
  auto session = SessionOf(ids);
  if (!session) {
    // What was posted is lost; the page is not.
    return GoTo(302, "Found", SignInAddress(request.url, request.queryString));
  }
  if (page == kPassword && request.method == "POST") return OwnPassword(request, std::move(session), ids, device);
  return AdmissionOf(std::move(session), "Form");
}

// The proxy has asked for the password, and sees to signing out. Rights are the users file's.
std::variant<Admission, Answer> Gate::AdmitProxied(std::string_view named, std::string_view page,
                                                   host::PageRequest& request) {
  HideSession(request);
  if (page == kSignIn || page == kSignOut) return SeeOther(std::string(kConsole));
  const std::optional<std::string> account = AccountNamed(named);
  const std::optional<User> user = account ? users_.Find(*account) : std::nullopt;
  if (!user) {
    const std::string address(VariableOf(request, "REMOTE_ADDR"));
    trail_.Refused(audit::Event::SignInRefused, {"", address}, {{"name", std::string(named)}, {"by", "proxy"}});
    return Refusal(403, "Forbidden");
  }
  try {
    return AdmissionOf(sessions_.OpenProxied(*user, settings_.patience), "Proxy");
  } catch (const NotKept& error) {
    log_.Write(std::string("nobody new can be let in: ") + error.what());
    return Refusal(503, "Service Unavailable");
  }
}

// The page is shown as if it had been asked for, and sees no password.
std::variant<Admission, Answer> Gate::OwnPassword(host::PageRequest& request, std::unique_ptr<FileSession> session,
                                                  const std::vector<std::string>& ids, const std::string& device) {
  if (SenderOf(request) == Sender::Elsewhere) return Refusal(403, "Forbidden");
  if (request.form.size() > kLargestSignIn) return Refusal(413, "Content Too Large");
  const Changer who{session->Account(), std::string(VariableOf(request, "REMOTE_ADDR")), device};
  const std::string form = std::exchange(request.form, "");
  request.method = "GET";
  const std::string outcome = ChangePassword(users_, throttle_, log_, who, form);
  if (outcome != "changed") {
    Admission admission = AdmissionOf(std::move(session), "Form");
    admission.variables.emplace_back("KALVO_PASSWORD", outcome);
    return admission;
  }
  trail_.Note(audit::Event::PasswordChanged, {who.account, who.address}, {});
  session.reset();  // the new one takes its place
  return AfterChange(request, who.account, ids);
}

// Every session that the old password began is over; this browser has a new one, which says so once.
Answer Gate::AfterChange(const host::PageRequest& request, const std::string& account,
                         const std::vector<std::string>& ids) {
  try {
    if (const std::optional<User> user = users_.Find(account)) {
      const std::string id = sessions_.Create(*user, ids);
      if (auto session = sessions_.Open(id, settings_.patience)) {
        session->Set("KalvoPasswordChanged", Value(std::string("Yes")));
      }
      Answer answer = SeeOther(std::string(kPasswordPage));
      answer.head.headers.emplace_back("Set-Cookie", SessionCookie(request, id));
      return answer;
    }
  } catch (const NotKept& error) {
    log_.Write(std::string("nobody can sign in: ") + error.what());
  }
  return SeeOther(std::string(kSignInPage));
}

// A page of another site must not end anybody's session. Every browser says where a posted form came from.
Answer Gate::SignOut(const host::PageRequest& request, const std::vector<std::string>& ids) {
  if (SenderOf(request) != Sender::ThisSite) return Refusal(403, "Forbidden");
  for (const std::string& id : ids) {
    const std::string account = sessions_.EndOne(id);
    if (account.empty()) continue;
    trail_.Note(audit::Event::SignedOut, {account, std::string(VariableOf(request, "REMOTE_ADDR"))}, {});
  }
  Answer answer = SeeOther(std::string(kSignInPage));
  answer.head.headers.emplace_back("Set-Cookie", SessionCookie(request, ""));
  return answer;
}

std::variant<Admission, Answer> Gate::SignIn(host::PageRequest& request, const std::vector<std::string>& oldSessions,
                                             std::string_view device) {
  if (SenderOf(request) == Sender::Elsewhere) return Refusal(403, "Forbidden");
  if (request.form.size() > kLargestSignIn) return Refusal(413, "Content Too Large");
  const std::string name = Field(request.form, "Name"), password = Field(request.form, "Password"),
                    back = Field(request.form, "Return");
  const std::optional<std::string> account = AccountNamed(name);
  const std::string counted = account.value_or(name);
  const std::string address(VariableOf(request, "REMOTE_ADDR"));
  // The page is shown as if it had been asked for, and does not see the password.
  request.method = "GET";
  request.form.clear();
  request.queryString = IsOfThisConsole(back) ? SignInAddress(back, "").substr(kSignInPage.size()) : "";
  if (request.queryString.starts_with('?')) request.queryString.erase(0, 1);

  try {
    if (const std::int64_t wait = throttle_.Begin(counted, address, device); wait > 0) {
      return SignInPage("wait " + std::to_string(wait));
    }
    const std::optional<User> user = Checked(account, password);
    if (!user) {
      trail_.Refused(audit::Event::SignInRefused, {"", address}, {{"name", counted}});
      return SignInPage("wrong");
    }
    throttle_.Succeeded(counted, address, device);
    Answer answer = Welcome(*user, request, back, oldSessions);
    trail_.Note(audit::Event::SignedIn, {user->account, address}, {});
    return answer;
  } catch (const NotKept& error) {
    log_.Write(std::string("nobody can sign in: ") + error.what());
    return SignInPage("full");
  }
}

// The browser has a device of its own from each sign-in: one that somebody planted in it is never known.
Answer Gate::Welcome(const User& user, const host::PageRequest& request, const std::string& back,
                     const std::vector<std::string>& oldSessions) {
  const std::string session = sessions_.Create(user, oldSessions), device = NewToken();
  throttle_.Remember(user.account, VariableOf(request, "REMOTE_ADDR"), device);
  Answer answer = SeeOther(IsOfThisConsole(back) ? back : std::string(kConsole));
  answer.head.headers.emplace_back("Set-Cookie", SessionCookie(request, session));
  answer.head.headers.emplace_back("Set-Cookie", DeviceCookie(request, device));
  return answer;
}

Admission Gate::SignInPage(std::string why) const {
  Admission admission;
  admission.session = std::make_unique<host::MemorySession>(host::NamedTexts());
  admission.variables = {{"AUTH_TYPE", "Form"}, {"KALVO_SIGN_IN", std::move(why)}};
  return admission;
}

std::optional<User> Gate::Checked(const std::optional<std::string>& account, std::string_view password) const {
  if (password.size() > kLongestPassword) return std::nullopt;
  const std::optional<User> user = account ? users_.Find(*account) : std::nullopt;
  if (!user || user->hash == kNoPassword) {
    PretendToCheck(password);
    return std::nullopt;
  }
  return PasswordFits(user->hash, password) ? user : std::nullopt;
}

// Whose password or rights have changed since the sign-in, or who is not a user any more, signs in again.
std::unique_ptr<FileSession> Gate::SessionOf(const std::vector<std::string>& ids) {
  for (const std::string& id : ids) {
    auto session = sessions_.Open(id, settings_.patience);
    if (!session) continue;
    const std::optional<User> user = users_.Find(session->Account());
    if (user && session->BelongsTo(*user)) return session;
    session->Abandon();
  }
  return nullptr;
}

}  // namespace kalvo::web::login
