#include "host/attack/probes.h"

#include <algorithm>

#include "kalvo/platform/append.h"

namespace kalvo::attack {
namespace {

constexpr std::string_view kBelow = "/KalvoforExchange/";
constexpr std::string_view kTag = "<kalvo-probe";                            // shows only where text became a tag
constexpr std::string_view kText = "%22%3E%3Ckalvo-probe%20x%3D%271%27%3E";  // "><kalvo-probe x='1'>
constexpr std::string_view kNeverIssued = "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA";

bool Holds(std::string_view text, std::string_view part) { return text.find(part) != std::string::npos; }

std::string Told(int status) { return "it is answered " + std::to_string(status); }

// ---- what answers are judged by -------------------------------------------------------------------------

struct Promise {
  const char* header;
  std::string_view holds;  // what its value has to hold
};
constexpr Promise kPromises[] = {
    {"content-security-policy", "default-src"},
    {"content-security-policy", "frame-ancestors"},
    {"content-security-policy", "base-uri 'none'"},
    {"content-security-policy", "object-src 'none'"},
    {"content-security-policy", "form-action 'self'"},
    {"x-content-type-options", "nosniff"},
    {"referrer-policy", ""},
    {"cross-origin-opener-policy", ""},
    {"cross-origin-resource-policy", ""},
};

std::string_view ScriptsOf(std::string_view policy) {
  auto at = policy.find("script-src");
  if (at == std::string::npos) at = policy.find("default-src");
  if (at == std::string::npos) return policy;
  const std::string_view rest = policy.substr(at);
  return rest.substr(0, rest.find(';'));
}

std::string Headers(const Answer& answer, bool encrypted) {
  for (const Promise& promise : kPromises) {
    const std::string value = answer.Header(promise.header);
    if (!value.empty() && Holds(value, promise.holds)) continue;
    return std::string("the header ") + promise.header + " is missing" +
           (value.empty() || promise.holds.empty() ? "" : " " + std::string(promise.holds));
  }
  if (Holds(ScriptsOf(answer.Header("content-security-policy")), "'unsafe-inline'")) {
    return "the header content-security-policy lets any script in a page run";
  }
  if (encrypted && answer.Header("strict-transport-security").empty()) {
    return "the header strict-transport-security is missing";
  }
  const std::string server = answer.Header("server");
  if (std::any_of(server.begin(), server.end(), [](char c) { return c >= '0' && c <= '9'; })) {
    return "the header server tells a version: " + server;
  }
  return "";
}

std::string PageHeaders(const Answer& answer, bool encrypted) {
  if (!Holds(answer.Header("cache-control"), "no-store")) return "the page may be cached: no-store is missing";
  return Headers(answer, encrypted);
}

std::string SignInNeeded(const Answer& answer, bool) {
  const bool sent = answer.status >= 300 && answer.status < 400 && Holds(answer.Header("location"), "SignIn.asp");
  if (sent || answer.status == 404 || answer.status == 403) return "";
  return "a page is shown to whoever asks: " + Told(answer.status);
}

std::string NothingThere(const Answer& answer, bool) {
  return answer.status == 404 || answer.status == 400 || answer.status == 403 ? "" : Told(answer.status);
}

// Where an address may also be one that needs a sign-in.
std::string NothingShown(const Answer& answer, bool encrypted) {
  return NothingThere(answer, encrypted).empty() ? "" : SignInNeeded(answer, encrypted);
}

std::string NotAllowed(const Answer& answer, bool) {
  return answer.status == 405 || answer.status == 501 ? "" : Told(answer.status);
}

std::string Refused(const Answer& answer, bool) {
  return answer.status >= 400 && answer.status < 500 ? "" : Told(answer.status);
}

std::string NoTag(const Answer& answer, bool) {
  if (Holds(answer.body, kTag)) return "text of the address became a tag of the page";
  return answer.status >= 500 ? Told(answer.status) : "";
}

std::string StaysHere(const Answer& answer, bool encrypted) {
  if (Holds(answer.Header("location"), "example.org")) return "the browser is sent to another site";
  for (const char* attribute : {"href=\"", "src=\"", "action=\""}) {
    for (const char* address : {"//example.org", "https://example.org", "javascript:"}) {
      if (Holds(answer.body, std::string(attribute) + address)) return "the page leads to another site";
    }
  }
  return NoTag(answer, encrypted);
}

std::string NoTrace(const Answer& answer, bool encrypted) {
  if (Holds(answer.body, "Sort Information:")) return "debug text is shown; debug = false in the settings hides it";
  return NoTag(answer, encrypted);
}

std::string NothingDone(const Answer& answer, bool encrypted) {
  if (answer.status >= 300 && answer.status < 400 && !Holds(answer.Header("location"), "SignIn.asp")) {
    return "a request by GET acts: " + Told(answer.status);
  }
  return NoTag(answer, encrypted);
}

// ---- what is asked --------------------------------------------------------------------------------------

struct Fixed {
  const char* what;
  const char* method;
  std::string_view path;  // below the console, or from the root
  const char* header;     // "" for none
  Judge judge;
};

// clang-format off
constexpr Fixed kStrangers[] = {
// what                              method     path                                    header  judged by
  {"headers of the sign-in page",    "GET",     "SignIn.asp",                           "",     PageHeaders},
  {"headers of a redirect",          "GET",     "",                                     "",     Headers},
  {"headers of a file",              "GET",     "console.css",                          "",     Headers},
  {"headers of an error",            "GET",     "/nothing-of-this-name",                "",     Headers},
  {"a page without a sign-in",       "GET",     "Tasks/CurrentAlerts.asp",              "",     SignInNeeded},
  {"the start page",                 "GET",     "Default.asp",                          "",     SignInNeeded},
  {"a folder's page",                "GET",     "Tasks/",                               "",     NothingShown},
  {"a made-up session",              "GET",     "Tasks/CurrentAlerts.asp",              "Cookie: KalvoSession=0000000000000000000000000000000000000000000000000000000000000000", SignInNeeded},
  {"a user named by a header",       "GET",     "Tasks/CurrentAlerts.asp",              "X-Remote-User: administrator", SignInNeeded},
  {"a user named by another header", "GET",     "Tasks/CurrentAlerts.asp",              "Remote-User: administrator",   SignInNeeded},
  {"an include",                     "GET",     "Include/Header.inc",                   "",     NothingThere},
  {"an include in capitals",         "GET",     "Include/HEADER.INC",                   "",     NothingThere},
  {"a hidden file",                  "GET",     ".git/config",                          "",     NothingThere},
  {"a hidden file of the site",      "GET",     "Tasks/.htpasswd",                      "",     NothingThere},
  {"the settings",                   "GET",     "../kalvo.toml",                        "",     NothingThere},
  {"the settings, encoded",          "GET",     "..%2fkalvo.toml",                      "",     NothingThere},
  {"the settings, encoded twice",    "GET",     "..%252fkalvo.toml",                    "",     NothingThere},
  {"the settings, by backslash",     "GET",     "..%5ckalvo.toml",                      "",     NothingThere},
  {"a system's file",                "GET",     "../../../../etc/passwd",               "",     NothingThere},
  {"a system's file, encoded",       "GET",     "%2e%2e/%2e%2e/%2e%2e/etc/passwd",      "",     NothingThere},
  {"a page with a point behind",     "GET",     "Tasks/CurrentAlerts.asp.",             "",     NothingThere},
  {"a page with a blank behind",     "GET",     "Tasks/CurrentAlerts.asp%20",           "",     NothingThere},
  {"a page's stream",                "GET",     "Tasks/CurrentAlerts.asp::$DATA",       "",     NothingThere},
  {"a page as a picture",            "GET",     "Tasks/CurrentAlerts.asp;.gif",         "",     NothingThere},
  {"a zero byte",                    "GET",     "Tasks/CurrentAlerts.asp%00.gif",       "",     NothingThere},
  {"a line end in an address",       "GET",     "Tasks/Current%0d%0aX:%201.asp",        "",     NothingThere},
  {"an error page's own address",    "GET",     "/_error/404.html",                     "",     NothingThere},
  {"TRACE",                          "TRACE",   "SignIn.asp",                           "",     NotAllowed},
  {"OPTIONS",                        "OPTIONS", "SignIn.asp",                           "",     NotAllowed},
  {"PUT",                            "PUT",     "probe.txt",                            "",     NotAllowed},
  {"DELETE",                         "DELETE",  "probe.txt",                            "",     NotAllowed},
  {"PROPFIND",                       "PROPFIND", "",                                    "",     NotAllowed},
  {"another host's name",            "GET",     "SignIn.asp",                           "Host: kalvo-probe.example", Refused},
  {"a return to another site",       "GET",     "SignIn.asp?Return=%2F%2Fexample.org",  "",     StaysHere},
  {"a return by its scheme",         "GET",     "SignIn.asp?Return=https%3A%2F%2Fexample.org%2F", "", StaysHere},
  {"a return that is script",        "GET",     "SignIn.asp?Return=javascript%3Aalert(1)%22%3E%3Ckalvo-probe%3E", "", StaysHere},
  {"a tag as a parameter's name",    "GET",     "SignIn.asp?%22%3E%3Ckalvo-probe%3E=1", "",     NoTag},
  {"a tag in an address",            "GET",     "%3Ckalvo-probe%3E.asp",                "",     NoTag},
  {"deleting by GET",                "GET",     "Configuration/Process.asp?ProcessType=DeleteMessage&ServerName=x&MailboxName=x&FolderId=&Flags=0&Continue=&MessageId=", "", NothingDone},
  {"deleting by HEAD",               "HEAD",    "Configuration/Process.asp?ProcessType=DeleteMessage&ServerName=x&MailboxName=x&FolderId=&Flags=0&Continue=&MessageId=", "", NothingDone},
  {"signing out by GET",             "GET",     "SignOut.asp",                          "",     NoTag},
};
// clang-format on

// Every one of these is put into every parameter.
constexpr std::string_view kPages[] = {
    "Tasks/CurrentAlerts.asp",      "Tasks/TopN.asp",
    "Resources/AllServers.asp",     "Resources/SingleServerReports.asp",
    "Resources/MailboxSummary.asp", "Resources/PublicFolderSummary.asp",
    "Resources/FindMailbox.asp",    "Configuration/Process.asp",
};
struct Parameter {
  const char* name;
  Judge judge;
};
constexpr Parameter kParameters[] = {
    {"Sort", NoTag},           {"SortOrder", NoTag},   {"First", NoTag},     {"PageSize", NoTag},
    {"Server", NoTag},         {"Mailbox", NoTag},     {"Container", NoTag}, {"ContainerId", NoTag},
    {"PublicFolderId", NoTag}, {"MessageId", NoTag},   {"Site", NoTag},      {"Organization", NoTag},
    {"GroupName", NoTag},      {"ServerName", NoTag},  {"Report", NoTag},    {"Continue", StaysHere},
    {"MailboxName", NoTag},    {"ProcessType", NoTag}, {"Debug", NoTag},
};
constexpr std::string_view kSorts[] = {"load_extension('x')", "(select%201)", "1", "ComputerName%3B", "1%20--"};

std::string AddressOf(std::string_view path) {
  return path.starts_with('/') ? std::string(path) : std::string(kBelow) + std::string(path);
}

std::string Repeated(std::string_view piece, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

void AddStrangers(std::vector<Probe>& probes) {
  for (const Fixed& fixed : kStrangers) {
    Question question{fixed.method, AddressOf(fixed.path), {}};
    if (question.path.ends_with("MessageId=")) question.path += kNeverIssued;
    if (*fixed.header) question.headers.emplace_back(fixed.header);
    probes.push_back({fixed.what, std::move(question), fixed.judge});
  }
  const std::string page = AddressOf("SignIn.asp");
  probes.push_back({"a query of 9 KiB", {"GET", page + "?x=" + std::string(9 * 1024, 'x'), {}}, Refused});
  probes.push_back({"a query of 1,100 parameters", {"GET", page + "?" + Repeated("a&", 1100) + "b", {}}, Refused});
  probes.push_back({"a header of 40 KB", {"GET", page, {"X-Probe: " + std::string(40'000, 'x')}}, Refused});
}

Question AskedBy(const std::string& cookie, std::string_view page, std::string_view query) {
  return {"GET", AddressOf(page) + "?" + std::string(query), {"Cookie: " + cookie}};
}

void AddVisitors(std::vector<Probe>& probes, const std::string& cookie) {
  for (const std::string_view page : kPages) {
    const auto add = [&](const std::string& name, const std::string& value, Judge judge) {
      probes.push_back({name + " of " + std::string(page), AskedBy(cookie, page, name + "=" + value), judge});
    };
    for (const Parameter& parameter : kParameters) add(parameter.name, std::string(kText), parameter.judge);
    for (const std::string_view sort : kSorts) add("Sort", std::string(sort), NoTag);
    for (const char* name : {"ContainerId", "PublicFolderId", "MessageId"}) add(name, std::string(kNeverIssued), NoTag);
    add("Debug", "Table", NoTrace);
    add("Debug", "All&Sort=" + std::string(kText), NoTrace);
  }
  for (const char* method : {"GET", "HEAD"}) {
    Question question = AskedBy(cookie, "Configuration/Process.asp",
                                "ProcessType=DeleteMessage&ServerName=x&MailboxName=x&FolderId=&Flags=0&Continue="
                                "&MessageId=" +
                                    std::string(kNeverIssued));
    question.method = method;
    probes.push_back({std::string("deleting by ") + method + " as a visitor", std::move(question), NothingDone});
  }
}

}  // namespace

std::vector<Probe> Probes(const std::string& cookie) {
  std::vector<Probe> probes;
  AddStrangers(probes);
  if (!cookie.empty()) AddVisitors(probes, cookie);
  return probes;
}

}  // namespace kalvo::attack
