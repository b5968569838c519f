#include "host/web/nginx_config.h"

#include <unistd.h>

#include <cmath>

#include "host/parts/setting_error.h"
#include "host/web/address.h"
#include "host/web/error_pages.h"
#include "host/web/headers.h"
#include "host/web/login/gate.h"
#include "host/web/run_folder.h"
#include "host/web/settings.h"
#include "platform/append.h"

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
  return "\"" + path.string() + "\"";
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
fastcgi_param HTTPS $https if_not_empty;
)";

constexpr std::string_view kLimits = R"(
client_max_body_size 1m;
client_header_timeout 15s;
client_body_timeout 15s;
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

void AppendErrors(std::string& out, const RunFolder& run) {
  for (const ErrorPage& page : ErrorPages()) {
    Append(out, "error_page ", page.status, " /_error/", page.status, ".html;\n");
  }
  Append(out, "error_page 494 =431 /_error/431.html;\n");
  // 502 is both: no worker took the request (the queue is full), or one took it and was lost.
  Append(out, "recursive_error_pages on;\nerror_page 502 = @lost;\n");
  Append(out, "location @lost {\n", "  if ($upstream_connect_time ~ \"^[0-9]\") { return 500; }\n  return 503;\n}\n");
  Append(out, "location ^~ /_error/ { internal; alias ", Quoted(run.Errors() / ""), "; }\n");
  Append(out, "location = /_error/503.html {\n  internal;\n  alias ", Quoted(run.Errors() / "503.html"),
         ";\n  add_header Retry-After 2 always;\n");
  AppendHeaders(out, Answers::ErrorPages, "  ");
  out += "}\n";
}

// What a stranger may send to sign in.
std::string SignInLimits() {
  return Built([](std::string& out) { Append(out, "  client_max_body_size ", login::kLargestSignIn, ";\n"); });
}

// A location of pages; `limits` are directives of its own.
void AppendPage(std::string& out, std::string_view address, std::string_view page, std::string_view url,
                const RunFolder& run, std::string_view limits = "") {
  Append(out, "location ", address, " {\n", limits, "  fastcgi_param KALVO_PAGE ", page,
         ";\n  fastcgi_param KALVO_URL ", url, ";\n");
  AppendHeaders(out, Answers::Pages, "  ");
  // A location with a parameter of its own inherits none.
  Append(out, kParameters.substr(1), "  fastcgi_pass \"unix:", run.Socket().string(), "\";\n}\n");
}

void AppendAddresses(std::string& out, const Settings& settings, const RunFolder& run) {
  const std::string site = Quoted(settings.site);
  Append(out, "if ($request_method !~ ^(GET|HEAD|POST)$) { return 405; }\n");
  Append(out, "location = / { return 302 /KalvoforExchange/; }\n");
  Append(out, "location = /KalvoforExchange { return 301 /KalvoforExchange/; }\n");
  Append(out, "location / { return 404; }\n");
  // The first match decides.
  Append(out, "location ~ [\\x00-\\x1f\\x7f] { return 400; }\n");
  Append(out, "location ~ /\\. { return 404; }\n");
  AppendPage(out, "= /KalvoforExchange/SignIn.asp", "/SignIn.asp", "$uri", run, SignInLimits());
  AppendPage(out, "~ ^/KalvoforExchange(/.*\\.[Aa][Ss][Pp])$", "$1", "$uri", run);
  AppendPage(out, "~ ^/KalvoforExchange(/(?:.*/)?)$", "$1Default.asp", "${uri}Default.asp", run);
  Append(out, "location ~ ^/KalvoforExchange(/.*\\.(?i:", kFileKinds, "))$ {\n  root ", site,
         ";\n  disable_symlinks on from=$document_root;\n  try_files $1 =404;\n");
  AppendHeaders(out, Answers::Files, "  ");
  out += "}\n";
  Append(out, "location ~ ^/KalvoforExchange(/[A-Za-z0-9_/-]+)$ {\n  root ", site,
         ";\n  if (-d $document_root$1) { return 301 /KalvoforExchange$1/; }\n  return 404;\n}\n");
}

}  // namespace

std::string NginxSite(const Settings& settings, const RunFolder& run) {
  const int seconds = static_cast<int>(std::ceil(settings.timeLimit));
  std::string out;
  Append(out, kLimits.substr(1), kFileTypes.substr(1));
  AppendHeaders(out, Answers::ErrorPages);
  // A request waits for a worker at most as long as a page may take, and is handed to one worker only.
  Append(out, "fastcgi_connect_timeout 5s;\nfastcgi_next_upstream off;\nfastcgi_send_timeout 15s;\n");
  // Only so does nginx know the end of a page from the end of its worker. Workers close each connection.
  Append(out, "fastcgi_keep_conn on;\n");
  Append(out, "fastcgi_read_timeout ", 2 * seconds + 5, "s;\n");
  Append(out, "fastcgi_buffer_size 16k;\nfastcgi_buffers 64 16k;\nfastcgi_busy_buffers_size 64k;\n");
  AppendErrors(out, run);
  AppendAddresses(out, settings, run);
  return out;
}

std::string NginxConfig(const Settings& settings, const RunFolder& run) {
  const Address address = *ParseAddress(settings.listen);
  std::string out;
  if (geteuid() == 0) Append(out, "user root root;\n");
  Append(out, "daemon off;\nworker_processes auto;\npid ", Quoted(run.NginxPid()), ";\nerror_log ",
         Quoted(run.NginxLog()), " error;\n");
  Append(out, "events { worker_connections 1024; }\nhttp {\naccess_log off;\nkeepalive_timeout 65s;\n");
  for (const std::string_view kind : {"client_body", "fastcgi", "proxy", "uwsgi", "scgi"}) {
    Append(out, kind, "_temp_path ", Quoted(run.Path() / kind), ";\n");
  }
  Append(out, "server {\nlisten ", address.host, ':', address.port, " default_server;\nserver_name _;\ninclude ",
         Quoted(run.NginxSite()), ";\n}\n}\n");
  return out;
}

}  // namespace kalvo::web
