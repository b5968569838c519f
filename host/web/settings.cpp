#include "host/web/settings.h"

#include <sys/stat.h>
#include <sys/un.h>
#include <toml++/toml.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <type_traits>
#include <variant>

#include "host/parts/setting_error.h"
#include "host/web/address.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/locale.h"
#include "kalvo/platform/text_tools.h"

namespace kalvo::web {
namespace {

namespace fs = std::filesystem;
using host::SettingError;

using Taken = bool (*)(std::string_view);

bool IsAnything(std::string_view) { return true; }
bool IsWeb(std::string_view word) { return word == "embedded" || word == "external"; }
bool IsLocale(std::string_view word) { return FindLocale(word); }
bool IsHeader(std::string_view word) {
  return word.size() <= 64 && std::all_of(word.begin(), word.end(), [](char c) {
           return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-';
         });
}
bool IsListen(std::string_view word) { return ParseAddress(word).has_value(); }

// A field of the settings, or of what they hold: At<&Settings::parts, &PartsSettings::mail>.
template <auto Member, auto... Inner>
auto& At(Settings& settings) {
  return ((settings.*Member).*....*Inner);
}

template <auto... Members>
void Set(Settings& settings, int number) {
  auto& field = At<Members...>(settings);
  field = static_cast<std::remove_reference_t<decltype(field)>>(number);
}

struct Word {
  std::string& (*field)(Settings&);
  Taken taken = IsAnything;
};
struct Path {
  fs::path Settings::*field;
};
struct LogPath {};
struct List {
  std::vector<std::string> Settings::*field;
  Taken taken;
};
struct Whole {
  void (*set)(Settings&, int);
  Range range;
};
struct Flag {
  bool& (*field)(Settings&);
};
struct Seconds {
  double& (*field)(Settings&);
  double least, most;
};

struct Rule {
  std::string_view key;
  std::variant<Word, Path, LogPath, List, Whole, Flag, Seconds> kind;
  std::string_view right;  // what would be right, for whoever wrote something else; "#" is the numbers, or the words,
                           // that there are
};

using host::PageLimits;
using host::PartsSettings;

// clang-format off
const Rule kRules[] = {
  {"listen",       Word{At<&Settings::listen>, IsListen},        "an address and a port, such as \"127.0.0.1:8080\" or \"[::1]:8080\""},
  {"hosts",        List{&Settings::hosts, IsHost},           "a list of names without ports, such as [\"mail.example\"]"},
  {"certificate",  Path{&Settings::certificate},             "a file with the certificate and its chain, as PEM"},
  {"certificate_key", Path{&Settings::certificateKey},       "a file with the certificate's key, as PEM"},
  {"proxy_socket", Path{&Settings::proxySocket},             "a socket in a folder that only the web server in front enters"},
  {"proxy_user_header", Word{At<&Settings::proxyUserHeader>, IsHeader}, "the name of a header, such as \"X-Remote-User\", or \"\" for none"},
  {"trusted_proxy", List{&Settings::trustedProxy, IsNetwork}, "a list of addresses and networks, such as [\"10.0.0.1\", \"10.1.0.0/16\"]"},
  {"address_connections", Whole{Set<&Settings::addressConnections>, {1, 16384}}, "a whole number from #"},
  {"site",         Path{&Settings::site},                    "the folder of the pages"},
  {"workers",      Whole{Set<&Settings::workers>, kWorkers},  "a whole number from #"},
  {"queue",        Whole{Set<&Settings::queue>, {1, 4096}},   "a whole number from #"},
  {"time_limit",   Seconds{At<&Settings::limits, &PageLimits::seconds>, 0.1, 3600}, "a number of seconds from 0.1 to 3600"},
  {"memory_limit", Whole{Set<&Settings::limits, &PageLimits::mebibytes>, kMemoryLimit}, "a whole number of MiB from #"},
  {"worker_memory", Whole{Set<&Settings::workerMemory>, {0, 1 << 20}}, "a whole number of MiB from #; 0 is what memory_limit needs"},
  {"user",         Word{At<&Settings::user>},                   "a user of the system, or \"\" for the one who starts"},
  {"database",     Word{At<&Settings::parts, &PartsSettings::database>, host::NamesDatabase},   "\"odbc\" or \"sqlite:FILE\""},
  {"unknown_engine", Flag{At<&Settings::parts, &PartsSettings::unknownEngine>},        "true or false"},
  {"mail",         Word{At<&Settings::parts, &PartsSettings::mail>, host::NamesMail},           "\"maildir:DIR\", \"imap://HOST:PORT\", \"imaps://HOST:PORT\", or \"\" for none"},
  {"holding_days", Whole{Set<&Settings::holdingDays>, {1, 3650}}, "a whole number of days from #"},
  {"locale",       Word{At<&Settings::parts, &PartsSettings::locale>, IsLocale}, "one of #"},
  {"topn_rows",    Whole{Set<&Settings::parts, &PartsSettings::topNRows>, {1, 10000}}, "a whole number from #"},
  {"topn_old_days", Whole{Set<&Settings::parts, &PartsSettings::topNOldDays>, {1, 3650}}, "a whole number of days from #"},
  {"run",          Path{&Settings::run},                     "a folder for sockets and temporary files"},
  {"web",          Word{At<&Settings::web>, IsWeb},             "\"embedded\" or \"external\""},
  {"nginx",        Word{At<&Settings::nginx>},                  "the nginx program"},
  {"log",          LogPath{},                                "a file, or \"-\" for standard error"},
  {"audit",        Path{&Settings::audit},                   "a folder for the audit log"},
  {"users",        Path{&Settings::users},                   "the users file that `kalvo passwd` makes, or \"\" for none"},
  {"sessions",     Path{&Settings::sessions},                "a folder for the sessions of those who signed in"},
  {"session_minutes", Whole{Set<&Settings::sessionMinutes>, {1, 1440}}, "a whole number of minutes from #"},
  {"sessions_per_user", Whole{Set<&Settings::sessionsPerUser>, {1, 100}}, "a whole number from #"},
  {"debug",        Flag{At<&Settings::debug>},                  "true or false"},
  {"show_errors",  Flag{At<&Settings::showErrors>},             "true or false"},
  {"error_pages",  Path{&Settings::errorPages},              "a folder with 404.html, 500.html, 503.html"},
};
// clang-format on

// One key of the file while it is read.
class Entry {
 public:
  Entry(const fs::path& file, const fs::path& folder, std::string key, const toml::node& node)
      : file_(file), folder_(folder), key_(std::move(key)), node_(node) {}

  [[noreturn]] void Refuse(std::string_view right) const {
    std::string message;
    Append(message, file_.string(), ':', node_.source().begin.line, ": ", key_, " takes ", right);
    throw SettingError(message);
  }

  std::string Text(std::string_view right) const {
    const auto text = node_.value_exact<std::string>();
    if (!text) Refuse(right);
    return *text;
  }

  fs::path Below(const std::string& path) const { return path.empty() ? fs::path() : folder_ / path; }
  std::string Folder() const { return folder_.string(); }
  const toml::node& Node() const { return node_; }

 private:
  const fs::path& file_;
  const fs::path& folder_;
  std::string key_;
  const toml::node& node_;
};

// What would be right, with the numbers or words that the rule allows.
std::string RightOf(const Rule& rule) {
  std::string allowed;
  if (const auto* whole = std::get_if<Whole>(&rule.kind)) {
    Append(allowed, whole->range.least, " to ", whole->range.most);
  } else {
    for (const Locale& locale : kLocales) Append(allowed, allowed.empty() ? "" : ", ", locale.name);
  }
  std::string right(rule.right);
  ReplaceAll(right, "#", allowed);
  return right;
}

// Takes one key's value into the settings, by the kind of its rule.
struct Take {
  Settings& settings;
  const Entry& entry;
  std::string_view right;

  void operator()(const Word& word) const {
    std::string text = entry.Text(right);
    if (!word.taken(text)) entry.Refuse(right);
    word.field(settings) = host::Rebased(text, entry.Folder());
  }
  void operator()(const Path& path) const { settings.*path.field = entry.Below(entry.Text(right)).lexically_normal(); }
  void operator()(const LogPath&) const {
    const std::string text = entry.Text(right);
    if (text.empty()) entry.Refuse(right);
    settings.log = text == "-" ? text : entry.Below(text).lexically_normal().string();
  }
  void operator()(const List& list) const {
    const toml::array* texts = entry.Node().as_array();
    if (!texts) entry.Refuse(right);
    for (const auto& node : *texts) {
      const auto text = node.value_exact<std::string>();
      if (!text || !list.taken(*text)) entry.Refuse(right);
      (settings.*list.field).push_back(*text);
    }
  }
  void operator()(const Whole& whole) const {
    const auto number = entry.Node().value_exact<std::int64_t>();
    if (!number || *number < whole.range.least || *number > whole.range.most) entry.Refuse(right);
    whole.set(settings, static_cast<int>(*number));
  }
  void operator()(const Flag& flag) const {
    const auto chosen = entry.Node().value_exact<bool>();
    if (!chosen) entry.Refuse(right);
    flag.field(settings) = *chosen;
  }
  void operator()(const Seconds& seconds) const {
    const auto number = entry.Node().value<double>();
    if (!number || !(*number >= seconds.least && *number <= seconds.most)) entry.Refuse(right);
    seconds.field(settings) = *number;
  }
};

// [visitor]: logon = "NAME" and a table of session values.
void TakeVisitor(Settings& settings, const fs::path& file, const fs::path& folder, const toml::node& visitor) {
  const toml::table* table = visitor.as_table();
  if (!table) Entry(file, folder, "visitor", visitor).Refuse("a table");
  for (const auto& [key, node] : *table) {
    const Entry entry(file, folder, "visitor." + std::string(key.str()), node);
    if (key == "logon") {
      settings.logon = entry.Text("a logon name, such as 'DOMAIN\\carol'");
    } else if (key == "session" && node.is_table()) {
      for (const auto& [name, value] : *node.as_table()) {
        const std::string text(name.str());
        const Entry item(file, folder, "visitor.session." + text, value);
        settings.session.emplace_back(text, item.Text("text, such as \"Yes\""));
      }
    } else {
      entry.Refuse("logon = \"NAME\" and the table [visitor.session] only");
    }
  }
}

// [application]: a table of texts that pages read.
void TakeApplication(Settings& settings, const fs::path& file, const fs::path& folder, const toml::node& application) {
  const toml::table* table = application.as_table();
  if (!table) Entry(file, folder, "application", application).Refuse("a table");
  for (const auto& [key, node] : *table) {
    const std::string name(key.str());
    settings.application.emplace_back(name, Entry(file, folder, "application." + name, node).Text("a text"));
  }
}

void TakeKey(Settings& settings, const fs::path& file, const fs::path& folder, const std::string& key,
             const toml::node& node) {
  if (key == "visitor") return TakeVisitor(settings, file, folder, node);
  if (key == "application") return TakeApplication(settings, file, folder, node);
  for (const Rule& rule : kRules) {
    if (rule.key != key) continue;
    const std::string right = RightOf(rule);
    return std::visit(Take{settings, Entry(file, folder, key, node), right}, rule.kind);
  }
  std::string message;
  Append(message, file.string(), ':', node.source().begin.line, ": there is no setting ", key, "; there are");
  for (const Rule& rule : kRules) Append(message, ' ', rule.key);
  throw SettingError(message + " and [visitor]");
}

fs::path OwnRunFolder(std::string_view listen) {
  const char* runtime = std::getenv("XDG_RUNTIME_DIR");
  std::string name = "kalvo-";
  Append(name, static_cast<unsigned>(geteuid()), '-', ParseAddress(listen)->port);
  return (runtime && *runtime ? fs::path(runtime) : fs::temp_directory_path()) / name;
}

// Script and the largest result have to fit, beside everything else.
void CompleteMemory(Settings& settings) {
  constexpr int kLargestResult = 512, kEverythingElse = 256;
  const int script = static_cast<int>(settings.limits.mebibytes), needed = script + kEverythingElse;
  if (settings.workerMemory == 0) settings.workerMemory = needed + kLargestResult;
  if (settings.workerMemory < needed) {
    throw SettingError("worker_memory: " + std::to_string(settings.workerMemory) +
                       " MiB is too little for a script of " + std::to_string(script) + " MiB; " +
                       std::to_string(needed) + " is the least");
  }
}

// Either everybody signs in, or everybody is the same visitor.
void CompleteLogin(Settings& settings) {
  if (settings.users.empty()) return;
  if (!fs::is_regular_file(settings.users)) {
    throw SettingError("users: there is no file " + settings.users.string() + "; `kalvo passwd` makes it");
  }
  if (!settings.logon.empty() || !settings.session.empty()) {
    throw SettingError("users and [visitor] exclude each other: visitors sign in, or all are the same one");
  }
}

void CheckCertificate(const Settings& settings) {
  if (settings.certificate.empty() != settings.certificateKey.empty()) {
    throw SettingError("certificate and certificate_key are needed both, or neither");
  }
  if (settings.certificate.empty()) return;
  if (settings.External()) throw SettingError("certificate: with web = \"external\" that nginx has the certificate");
  for (const fs::path& file : {settings.certificate, settings.certificateKey}) {
    if (!fs::is_regular_file(file)) throw SettingError("certificate: there is no file " + file.string());
  }
}

// Where others reach the console, they sign in, nothing is sent in the clear, and it knows its names.
void CompleteReach(Settings& settings, const Address& address) {
  CheckCertificate(settings);
  if (settings.External()) return;  // reached by its socket alone
  const auto refuse = [&](std::string_view why) {
    throw SettingError("listen: other machines reach " + settings.listen + ", so " + std::string(why));
  };
  if (!IsLoopback(address)) {
    if (settings.users.empty()) refuse("visitors have to sign in: users is needed");
    if (settings.certificate.empty() && settings.trustedProxy.empty()) {
      refuse(
          "it has to be encrypted: certificate and certificate_key are needed, or trusted_proxy where a web server "
          "in front of it encrypts");
    }
    if (IsEveryAddress(address) && settings.hosts.empty()) refuse("hosts has to say by which names");
  }
  if (settings.hosts.empty()) settings.hosts = {"localhost", "127.0.0.1", "[::1]", address.host};
}

// Whoever reaches the socket says who the visitor is.
void CheckProxy(const Settings& settings) {
  const fs::path& socket = settings.proxySocket;
  if (socket.empty()) {
    if (settings.proxyUserHeader.empty()) return;
    throw SettingError("proxy_user_header: it is believed on proxy_socket alone, which is missing");
  }
  if (settings.External()) throw SettingError("proxy_socket: with web = \"external\" that nginx is the proxy");
  if (!settings.proxyUserHeader.empty() && settings.users.empty()) {
    throw SettingError("proxy_user_header: the rights of those whom it names are those of users, which is missing");
  }
  struct stat folder {};
  if (stat(socket.parent_path().c_str(), &folder) != 0 || !S_ISDIR(folder.st_mode)) {
    throw SettingError("proxy_socket: there is no folder " + socket.parent_path().string());
  }
  if ((folder.st_mode & S_IRWXO) != 0) {
    throw SettingError("proxy_socket: everybody enters " + socket.parent_path().string() +
                       " and could name a user; chmod o-rwx, and let the web server in by the folder's group");
  }
  if (socket.native().size() >= sizeof(sockaddr_un::sun_path)) {
    throw SettingError("proxy_socket: " + socket.string() + " is too long for a socket; a shorter path is needed");
  }
}

}  // namespace

host::PartsSettings Settings::Parts() const {
  host::PartsSettings chosen = parts;
  chosen.timeLimit = limits.seconds;
  return chosen;
}

Settings ReadSettings(const fs::path& file) {
  if (!fs::is_regular_file(file)) throw SettingError(file.string() + ": there is no such settings file");
  const fs::path folder = fs::absolute(file).parent_path();
  Settings settings;
  try {
    for (const auto& [key, node] : toml::parse_file(file.string())) {
      TakeKey(settings, file, folder, std::string(key.str()), node);
    }
  } catch (const toml::parse_error& error) {
    std::string message;
    Append(message, file.string(), ':', error.source().begin.line, ": ", error.description());
    throw SettingError(message);
  }
  return settings;
}

void Complete(Settings& settings) {
  const auto address = ParseAddress(settings.listen);
  if (!address) {
    throw SettingError("\"" + settings.listen + "\" is not an address with a port; 127.0.0.1:8080 or [::1]:8080 is");
  }
  if (settings.site.empty()) settings.site = KALVO_DEFAULT_SITE;
  if (!fs::is_directory(settings.site)) throw SettingError("the site " + settings.site.string() + " is not a folder");
  settings.site = fs::canonical(settings.site);
  CompleteFolders(settings);
  CompleteMemory(settings);
  CompleteLogin(settings);
  CompleteReach(settings, *address);
  CheckProxy(settings);
  if (!settings.errorPages.empty() && !fs::is_directory(settings.errorPages)) {
    throw SettingError("error_pages: " + settings.errorPages.string() + " is not a folder");
  }
}

void CompleteFolders(Settings& settings) {
  if (settings.run.empty()) settings.run = OwnRunFolder(settings.listen);
  settings.run = fs::absolute(settings.run).lexically_normal();
  if (!settings.proxySocket.empty()) settings.proxySocket = fs::absolute(settings.proxySocket).lexically_normal();
  if (settings.sessions.empty()) settings.sessions = settings.run / "sessions";
  settings.sessions = fs::absolute(settings.sessions).lexically_normal();
  if (settings.audit.empty()) settings.audit = settings.run / "audit";
  settings.audit = fs::absolute(settings.audit).lexically_normal();
  if (!settings.users.empty()) settings.users = fs::absolute(settings.users).lexically_normal();
}

}  // namespace kalvo::web
