#include "adapters/imap/imap_settings.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <vector>

#include "adapters/mail/errors.h"
#include "base/percent.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/text_tools.h"

namespace kalvo::imap {

namespace {

template <typename... Pieces>
[[noreturn]] void Refuse(const Pieces&... pieces) {
  throw mail::StoreFailed(Built([&](std::string& out) { Append(out, "Mail address: ", pieces...); }));
}

std::string Decoded(std::string_view text) {
  auto plain = base::FromPercent(text);
  if (!plain) Refuse("\"%\" must be followed by two hexadecimal digits in \"", text, "\".");
  return std::move(*plain);
}

template <typename Number>
Number ReadNumber(std::string_view what, std::string_view text, Number least, Number most) {
  Number number{};
  const auto end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number);
  if (read.ec != std::errc{} || read.ptr != end || number < least || number > most) {
    Refuse(what, " must be a number from ", least, " to ", most, ", not \"", text, "\".");
  }
  return number;
}

// "HOST", "HOST:PORT", "[::1]:PORT"
void ReadHost(std::string_view text, ServerAddress& address) {
  std::string_view port;
  if (text.starts_with('[')) {
    const auto end = text.find(']');
    if (end == std::string::npos) Refuse("\"]\" is missing in \"", text, "\".");
    address.host = Decoded(text.substr(1, end - 1));
    port = text.substr(end + 1);
  } else {
    const auto colon = std::min(text.find(':'), text.size());
    address.host = Decoded(text.substr(0, colon));
    port = text.substr(colon);
  }
  if (address.host.empty()) Refuse("the host is missing.");
  CheckSendable("The host", address.host);
  if (!port.empty()) address.port = ReadNumber<std::uint16_t>("the port", port.substr(1), 1, 65535);
}

Security ReadSecurity(std::string_view word) {
  if (word == "none") return Security::None;
  if (word == "starttls") return Security::StartTls;
  if (word == "tls") return Security::Tls;
  Refuse("tls must be none, starttls or tls, not \"", word, "\".");
}

std::string ReadPassword(const std::string& path) {
  std::ifstream file(path);
  std::string password;
  if (!file || !std::getline(file, password)) Refuse("the password file \"", path, "\" cannot be read or is empty.");
  if (password.ends_with('\r')) password.pop_back();
  return password;
}

std::chrono::milliseconds Seconds(std::string_view what, std::string_view text) {
  return std::chrono::seconds(ReadNumber<int>(what, text, 1, 3600));
}

struct Reader {
  Settings settings;
  std::vector<std::string> servers;

  void Take(std::string_view name, const std::string& value) {
    const std::pair<std::string_view, std::string*> texts[] = {
        {"directory", &settings.directoryFile},        {"password-file", &settings.passwordFile},
        {"template", &settings.loginTemplate},         {"public-login", &settings.publicTemplate},
        {"holding", &settings.holdingFolder},          {"holding-login", &settings.holdingTemplate},
        {"ca-file", &settings.server.certificateFile},
    };
    for (const auto& [known, text] : texts) {
      if (name != known) continue;
      *text = value;
      return;
    }
    if (name == "tls") {
      settings.server.security = ReadSecurity(value);
    } else if (name == "server") {
      servers.push_back(value);
    } else if (name == "sort") {
      if (value != "yes" && value != "no") Refuse("sort must be yes or no, not \"", value, "\".");
      settings.serverSort = value == "yes";
    } else if (name == "login") {
      if (value != "name" && value != "authorize") Refuse("login must be name or authorize, not \"", value, "\".");
      settings.authorizes = value == "authorize";
    } else if (name == "plain") {
      if (value != "yes" && value != "no") Refuse("plain must be yes or no, not \"", value, "\".");
      settings.plainAllowed = value == "yes";
    } else if (name == "silence") {
      settings.limits.silence = Seconds(name, value);
    } else if (name == "time-limit") {
      settings.limits.operation = Seconds(name, value);
    } else {
      Refuse("\"", name, "\" is not a setting.");
    }
  }

  void TakeAll(std::string_view query) {
    while (!query.empty()) {
      const auto end = std::min(query.find('&'), query.size());
      const auto part = query.substr(0, end);
      const auto equals = std::min(part.find('='), part.size());
      if (!part.empty()) Take(part.substr(0, equals), Decoded(part.substr(std::min(equals + 1, part.size()))));
      query.remove_prefix(std::min(end + 1, query.size()));
    }
  }

  // The servers' own addresses take everything else from the one of the URL, which is complete by now.
  void PlaceServers() {
    for (const auto& text : servers) {
      const auto equals = text.find('=');
      if (equals == std::string::npos) Refuse("server must be NAME=HOST:PORT, not \"", text, "\".");
      ServerAddress address = settings.server;
      ReadHost(std::string_view(text).substr(equals + 1), address);
      settings.servers[ToLowerAscii(text.substr(0, equals))] = address;
    }
  }
};

}  // namespace

const ServerAddress& Settings::AddressOf(std::string_view serverName) const {
  const auto found = servers.find(ToLowerAscii(serverName));
  return found == servers.end() ? server : found->second;
}

namespace {

// Deleted messages are never held where the owner of a mailbox, or anybody's new mail, is.
void CheckHolding(const Settings& settings) {
  if (settings.holdingFolder.empty() || settings.holdingFolder.size() > 100 ||
      ToLowerAscii(settings.holdingFolder) == "inbox" ||
      settings.holdingFolder.find_first_of("*%") != std::string::npos) {
    Refuse("holding must be the name of a folder of its own, of up to 100 bytes and without \"*\" and \"%\", not \"",
           settings.holdingFolder, "\".");
  }
  if (settings.HoldingLogin().find("{mailbox}") != std::string::npos) {
    Refuse("holding-login must be the product's own account, without {mailbox}.");
  }
  CheckSendable("The holding folder", settings.holdingFolder);
  CheckSendable("The holding login", settings.holdingTemplate);
}

}  // namespace

std::string Settings::LoginOf(std::string_view mailbox) const {
  std::string login = mailbox.empty() ? publicTemplate : loginTemplate;
  ReplaceAll(login, "{admin}", administrator);
  if (!mailbox.empty()) ReplaceAll(login, "{mailbox}", mailbox);
  return login;
}

Login Settings::LoginAs(const std::string& user) const { return {user, password, authorizes ? administrator : ""}; }

std::string Settings::HoldingLogin() const {
  std::string login = holdingTemplate.empty() ? publicTemplate : holdingTemplate;
  ReplaceAll(login, "{admin}", administrator);
  return login;
}

namespace {

bool IsThisMachine(std::string_view host) {
  return EqualsIgnoringAsciiCase(host, "localhost") || host.starts_with("127.") || host == "::1";
}

// The password opens every mailbox.
void CheckSecurity(const ServerAddress& address, bool plainAllowed) {
  if (address.security != Security::None || plainAllowed || IsThisMachine(address.host)) return;
  Refuse("tls=none would send the password to ", address.host,
         " for everybody on the way to read; use starttls or tls, or say plain=yes.");
}

}  // namespace

Settings ReadSettings(std::string_view url) {
  Reader reader;
  auto& settings = reader.settings;
  if (url.starts_with("imaps://")) {
    settings.server.security = Security::Tls;
    settings.server.port = 993;
    url.remove_prefix(8);
  } else if (url.starts_with("imap://")) {
    url.remove_prefix(7);
  } else {
    Refuse("it must begin with \"imap://\" or \"imaps://\".");
  }
  const auto question = std::min(url.find('?'), url.size());
  auto place = url.substr(0, question);
  if (place.ends_with('/')) place.remove_suffix(1);
  const auto at = place.rfind('@');
  if (at == std::string::npos) Refuse("the administrator is missing: imap://ADMIN@HOST:PORT/.");
  settings.administrator = Decoded(place.substr(0, at));
  ReadHost(place.substr(at + 1), settings.server);
  reader.TakeAll(url.substr(std::min(question + 1, url.size())));
  if (settings.directoryFile.empty()) Refuse("directory=FILE is missing.");
  if (settings.passwordFile.empty()) Refuse("password-file=FILE is missing.");
  reader.PlaceServers();
  CheckSecurity(settings.server, settings.plainAllowed);
  for (const auto& [name, address] : settings.servers) CheckSecurity(address, settings.plainAllowed);
  if (settings.authorizes && settings.loginTemplate.empty()) settings.loginTemplate = "{mailbox}";
  if (settings.loginTemplate.empty()) settings.loginTemplate = "{mailbox}*{admin}";
  settings.password = ReadPassword(settings.passwordFile);
  CheckSendable("The administrator", settings.administrator);
  CheckSendable("The password", settings.password);
  CheckSendable("The login template", settings.loginTemplate);
  CheckHolding(settings);
  return settings;
}

void CheckSendable(std::string_view what, std::string_view text) {
  for (const char c : text) {
    if (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F) continue;
    throw mail::StoreFailed(
        Built([&](std::string& out) { Append(out, what, " has a control character, which cannot be sent."); }));
  }
}

}  // namespace kalvo::imap
