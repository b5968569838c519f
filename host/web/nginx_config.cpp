#include "host/web/nginx_config.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>

#include "host/parts/setting_error.h"
#include "host/web/address.h"
#include "host/web/error_pages.h"
#include "host/web/headers.h"
#include "host/web/login/addresses.h"
#include "host/web/login/gate.h"
#include "host/web/privileges.h"
#include "host/web/run_folder.h"
#include "host/web/settings.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::web {
namespace {

namespace fs = std::filesystem;

// A path as nginx reads it. Nothing escapes a "$" there, so such a path is refused.
std::string Quoted(const fs::path& path) {
  for (const char character : path.native()) {
    if (character == '$' || character == '"' || character == '\\' || static_cast<unsigned char>(character) < 0x20) {
      throw host::SettingError("the path " + path.string() + " has a character that nginx cannot take ($ \" \\)");
    }
  }
  return Built([&](std::string& out) { Append(out, "\"", path.string(), "\""); });
}

// What workers are told of a request, beside the request's own headers.
constexpr std::string_view kParameters = R"(
fastcgi_param QUERY_STRING $query_string;
fastcgi_param REQUEST_METHOD $request_method;
fastcgi_param CONTENT_TYPE $content_type;
fastcgi_param CONTENT_LENGTH $content_length;
fastcgi_param SERVER_NAME $host;
fastcgi_param SERVER_PORT $server_port;
fastcgi_param SERVER_PROTOCOL $server_protocol;
fastcgi_param REMOTE_ADDR $remote_addr;
)";

constexpr std::string_view kLimits = R"(
client_max_body_size 1m;
client_header_timeout 5s;
client_body_timeout 5s;
send_timeout 60s;
client_header_buffer_size 4k;
large_client_header_buffers 4 16k;
absolute_redirect off;
server_tokens off;
)";

// Only these are files to send. A page's includes and whatever else lies in the site are not.
constexpr std::string_view kFileKinds = "gif|png|jpe?g|svg|ico|css|js|html?|txt|woff2?";

constexpr std::string_view kFileTypes = R"(
types {
  text/html html htm;
  text/css css;
  text/plain txt;
  application/javascript js;
  image/gif gif;
  image/png png;
  image/jpeg jpg jpeg;
  image/svg+xml svg;
  image/x-icon ico;
  font/woff woff;
  font/woff2 woff2;
}
charset utf-8;
)";

// Files are the same for everybody and hold no secret. A page is not packed: it has a token beside what a visitor
// may have put there, and its length would tell of the one by the other.
constexpr std::string_view kFilePacking = R"(
  gzip on;
  gzip_vary on;
  gzip_min_length 1000;
  gzip_types text/css text/plain application/javascript image/svg+xml;
)";

// What the site is made of.
struct Parts {
  const Settings& settings;
  const RunFolder& run;
};

void AppendErrors(std::string& out, const Parts& parts) {
  for (const ErrorPage& page : ErrorPages()) {
    Append(out, "error_page ", page.status, " /_error/", page.status, ".html;\n");
  }
  Append(out, "error_page 494 =431 /_error/431.html;\nerror_page 497 =400 /_error/400.html;\n");
  // 502 is both: no worker took the request (the queue is full), or one took it and was lost.
  Append(out, "recursive_error_pages on;\nerror_page 502 = @lost;\n");
  Append(out, "location @lost {\n", "  if ($upstream_connect_time ~ \"^[0-9]\") { return 500; }\n  return 503;\n}\n");
  Append(out, "location ^~ /_error/ { internal; alias ", Quoted(parts.run.Errors() / ""), "; }\n");
  Append(out, "location = /_error/503.html {\n  internal;\n  alias ", Quoted(parts.run.Errors() / "503.html"),
         ";\n  add_header Retry-After 2 always;\n");
  AppendHeaders(out, Answers::ErrorPages, parts.settings.Encrypts(), "  ");
  out += "}\n";
}

// Whether a proxy's word for who asks, and how, is taken by an nginx of our own.
bool TakesWord(const Settings& settings) {
  return !settings.External() && (!settings.trustedProxy.empty() || !settings.proxySocket.empty());
}

// "X-Remote-User" as nginx and workers know it: "http_x_remote_user".
std::string VariableOf(std::string_view header) {
  std::string variable = "http_" + ToLowerAscii(header);
  std::replace(variable.begin(), variable.end(), '-', '_');
  return variable;
}

// Whether nobody but the proxy may come, because nothing is encrypted between here and there.
bool IsBehindProxy(const Settings& settings) {
  return TakesWord(settings) && !settings.Encrypts() && !IsLoopback(*ParseAddress(settings.listen));
}

// A visitor's address is what the last proxy that is trusted says it is; from anybody else such a word is ignored.
void AppendProxies(std::string& out, const Settings& settings) {
  if (settings.trustedProxy.empty() && settings.proxySocket.empty()) return;
  for (const std::string& proxy : settings.trustedProxy) Append(out, "set_real_ip_from ", proxy, ";\n");
  if (!settings.proxySocket.empty()) out += "set_real_ip_from unix:;\n";
  Append(out, "real_ip_header X-Forwarded-For;\nreal_ip_recursive on;\n");
}

// A host name as a regular expression.
std::string Pattern(std::string_view host) {
  std::string pattern;
  for (const char c : host) {
    if (c == '.' || c == '[' || c == ']') pattern += '\\';
    pattern += c;
  }
  return pattern;
}

// Who asks for another server, or past the proxy, is told so and no more. An error page is for everybody.
void AppendRefusals(std::string& out, const Settings& settings) {
  Append(out, "set $kalvo_refusal \"\";\n");
  if (!settings.hosts.empty()) {
    std::string names;
    for (const std::string& host : settings.hosts) Append(names, names.empty() ? "" : "|", Pattern(host));
    Append(out, "if ($host !~* \"^(?:", names, ")$\") { set $kalvo_refusal 421; }\n");
    // The address may name another host than the header, which is what pages see.
    Append(out, "if ($http_host !~* \"^(?:", names, ")(?::[0-9]*)?$\") { set $kalvo_refusal 421; }\n");
  }
  if (IsBehindProxy(settings)) Append(out, "if ($kalvo_from_proxy = 0) { set $kalvo_refusal 403; }\n");
  Append(out, "if ($uri ~ ^/_error/) { set $kalvo_refusal \"\"; }\n");
  Append(out, "if ($kalvo_refusal = 421) { return 421; }\nif ($kalvo_refusal = 403) { return 403; }\n");
}

// What a stranger may send to sign in.
std::string SignInLimits() {
  return Built([](std::string& out) { Append(out, "  client_max_body_size ", login::kLargestSignIn, ";\n"); });
}

// Whom the proxy names. The header itself reaches no page, from whomever it came.
void AppendProxyUser(std::string& out, const Settings& settings) {
  if (settings.proxyUserHeader.empty()) return;
  const std::string variable = ToUpperAscii(VariableOf(settings.proxyUserHeader));
  Append(out, "fastcgi_param KALVO_PROXY_USER $kalvo_proxy_user if_not_empty;\nfastcgi_param ", variable, " \"\";\n");
}

// A location of pages; `limits` are directives of its own.
void AppendPage(std::string& out, std::string_view address, std::string_view page, std::string_view url,
                const Parts& parts, std::string_view limits = "") {
  Append(out, "location ", address, " {\n", limits, "  fastcgi_param KALVO_PAGE ", page,
         ";\n  fastcgi_param KALVO_URL ", url, ";\n");
  AppendHeaders(out, Answers::Pages, parts.settings.Encrypts(), "  ");
  // A location with a parameter of its own inherits none.
  Append(out, kParameters.substr(1), "fastcgi_param HTTPS ", TakesWord(parts.settings) ? "$kalvo_https" : "$https",
         " if_not_empty;\n");
  AppendProxyUser(out, parts.settings);
  Append(out, "  fastcgi_pass \"unix:", parts.run.Socket().string(), "\";\n}\n");
}

void AppendAddresses(std::string& out, const Parts& parts) {
  const std::string site = Quoted(parts.settings.site);
  Append(out, "if ($request_method !~ ^(GET|HEAD|POST)$) { return 405; }\n");
  Append(out, "location = / { return 302 /KalvoforExchange/; }\n");
  Append(out, "location = /KalvoforExchange { return 301 /KalvoforExchange/; }\n");
  Append(out, "location / { return 404; }\n");
  // The first match decides.
  Append(out, "location ~ [\\x00-\\x1f\\x7f] { return 400; }\n");
  Append(out, "location ~ /\\. { return 404; }\n");
  AppendPage(out, "= /KalvoforExchange/SignIn.asp", "/SignIn.asp", "$uri", parts, SignInLimits());
  AppendPage(out, "~ ^/KalvoforExchange(/.*\\.[Aa][Ss][Pp])$", "$1", "$uri", parts);
  AppendPage(out, "~ ^/KalvoforExchange(/(?:.*/)?)$", "$1Default.asp", "${uri}Default.asp", parts);
  Append(out, "location ~ ^/KalvoforExchange(/.*\\.(?i:", kFileKinds, "))$ {\n  root ", site,
         ";\n  disable_symlinks on from=$document_root;\n  try_files $1 =404;\n", kFilePacking.substr(1));
  AppendHeaders(out, Answers::Files, parts.settings.Encrypts(), "  ");
  out += "}\n";
  Append(out, "location ~ ^/KalvoforExchange(/[A-Za-z0-9_/-]+)$ {\n  root ", site,
         ";\n  if (-d $document_root$1) { return 301 /KalvoforExchange$1/; }\n  return 404;\n}\n");
}

// ---- an nginx of our own --------------------------------------------------------------------------------

struct Connections {
  rlim_t connections, files;
};

// Half a request costs its sender nothing and us a connection for some seconds, so there are many; never more than
// the system gives files for.
Connections MostConnections() {
  constexpr rlim_t kConnections = 16384, kFilesBeside = 512;
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  const rlim_t files = std::min<rlim_t>(limit.rlim_max, 2 * kConnections + kFilesBeside);
  return {std::max<rlim_t>(files / 2, kFilesBeside) - kFilesBeside / 2, files};
}

// One address has a share of the connections, and of the attempts to sign in.
constexpr std::string_view kShares = R"(
limit_conn_status 503;
limit_conn_log_level info;
limit_req_status 503;
limit_req_log_level info;
limit_req zone=kalvo_sign_ins burst=20 nodelay;
)";

void AppendZones(std::string& out, const Settings& settings) {
  Append(out, "limit_conn_zone $binary_remote_addr zone=kalvo_addresses:10m;\n");
  // A browser that shows a device is the throttle's business: it knows whether the device is true.
  Append(out, "map \"$request_method:$uri:$http_cookie\" $kalvo_sign_in {\n  default \"\";\n",
         "  \"~^POST:", login::kSignInPage, ":(?!.*KalvoDevice=)\" $binary_remote_addr;\n}\n");
  Append(out, "limit_req_zone $kalvo_sign_in zone=kalvo_sign_ins:10m rate=10r/s;\n");
  if (!TakesWord(settings)) return;
  // Who comes by the proxy's socket has no address.
  Append(out, "geo $realip_remote_addr $kalvo_from_address {\n  default 0;\n");
  for (const std::string& proxy : settings.trustedProxy) Append(out, "  ", proxy, " 1;\n");
  Append(out, "}\nmap $realip_remote_addr $kalvo_from_proxy {\n  default $kalvo_from_address;\n",
         settings.proxySocket.empty() ? "" : "  \"unix:\" 1;\n",
         "}\nmap \"$kalvo_from_proxy:$http_x_forwarded_proto\" $kalvo_https {\n  default $https;\n",
         "  \"1:https\" on;\n}\n");
}

void AppendProxyUsers(std::string& out, const Settings& settings) {
  if (settings.proxyUserHeader.empty()) return;
  Append(out, "map $realip_remote_addr $kalvo_proxy_user {\n  default \"\";\n  \"unix:\" $",
         VariableOf(settings.proxyUserHeader), ";\n}\n");
}

void AppendEncryption(std::string& out, const Settings& settings) {
  Append(out, "ssl_certificate ", Quoted(settings.certificate), ";\nssl_certificate_key ",
         Quoted(settings.certificateKey), ";\n");
  Append(out, "ssl_protocols TLSv1.2 TLSv1.3;\nssl_ciphers ECDHE+AESGCM:ECDHE+CHACHA20;\n",
         "ssl_prefer_server_ciphers off;\nssl_session_cache shared:kalvo:10m;\nssl_session_timeout 1h;\n",
         "ssl_session_tickets off;\n");
}

// The site at an address, or at a socket, where nothing needs encryption.
void AppendServer(std::string& out, const std::string& where, const Parts& parts) {
  const bool encrypts = parts.settings.Encrypts() && where[0] != '"';
  Append(out, "server {\nlisten ", where, " default_server backlog=4096", encrypts ? " ssl" : "",
         ";\nserver_name _;\n");
  if (encrypts) AppendEncryption(out, parts.settings);
  Append(out, kShares.substr(1), "limit_conn kalvo_addresses ", parts.settings.addressConnections, ";\ninclude ",
         Quoted(parts.run.NginxSite()), ";\n}\n");
}

}  // namespace

std::string NginxSite(const Settings& settings, const RunFolder& run) {
  const Parts parts{settings, run};
  const int seconds = static_cast<int>(std::ceil(settings.limits.seconds));
  std::string out;
  Append(out, kLimits.substr(1), kFileTypes.substr(1));
  AppendHeaders(out, Answers::ErrorPages, settings.Encrypts());
  // A request waits for a worker at most as long as a page may take, and is handed to one worker only.
  Append(out, "fastcgi_connect_timeout 5s;\nfastcgi_next_upstream off;\nfastcgi_send_timeout 15s;\n");
  // Only so does nginx know the end of a page from the end of its worker. Workers close each connection.
  Append(out, "fastcgi_keep_conn on;\n");
  Append(out, "fastcgi_read_timeout ", 2 * seconds + 5, "s;\n");
  Append(out, "fastcgi_buffer_size 16k;\nfastcgi_buffers 64 16k;\nfastcgi_busy_buffers_size 64k;\n");
  AppendProxies(out, settings);
  AppendRefusals(out, settings);
  AppendErrors(out, parts);
  AppendAddresses(out, parts);
  return out;
}

std::string NginxConfig(const Settings& settings, const RunFolder& run) {
  const Address address = *ParseAddress(settings.listen);
  const Connections most = MostConnections();
  const Parts parts{settings, run};
  std::string out;
  if (geteuid() == 0) {
    const auto identity = IdentityNamed(settings.user);
    Append(out, "user ", identity ? identity->name : "root", ' ', identity ? identity->groupName : "root", ";\n");
  }
  // What a flood causes is not news: only what stops nginx itself is written.
  Append(out, "daemon off;\nworker_processes auto;\nworker_rlimit_nofile ", most.files, ";\npid ",
         Quoted(run.NginxPid()), ";\nerror_log ", Quoted(run.NginxLog()), " crit;\n");
  Append(out, "events { worker_connections ", most.connections,
         "; }\nhttp {\naccess_log off;\nkeepalive_timeout 65s;\n");
  for (const std::string_view kind : {"client_body", "fastcgi", "proxy", "uwsgi", "scgi"}) {
    Append(out, kind, "_temp_path ", Quoted(run.Path() / kind), ";\n");
  }
  AppendZones(out, settings);
  AppendProxyUsers(out, settings);
  AppendServer(out, address.host + ':' + std::to_string(address.port), parts);
  if (!settings.proxySocket.empty()) AppendServer(out, Quoted("unix:" + settings.proxySocket.string()), parts);
  out += "}\n";
  return out;
}

}  // namespace kalvo::web
