#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/parts/parts.h"
#include "host/script/page/page_request.h"

namespace kalvo::web {

// What a whole number of the settings may be.
struct Range {
  int least, most;
};
inline constexpr Range kWorkers{1, 1024};
inline constexpr Range kMemoryLimit{1, 65536};  // MiB

// How a site is served. Every setting has a default; `kalvo.toml` in the source folder shows them all.
struct Settings {
  std::string listen = "127.0.0.1:8080";  // beyond this machine only with a certificate, or a proxy that has one
  std::vector<std::string> hosts;         // the names it is known by; default: those of this machine and `listen`
  std::filesystem::path certificate;      // with the chain, as PEM; with it everything is encrypted
  std::filesystem::path certificateKey;
  std::vector<std::string> trustedProxy;  // whose word for a visitor's address and encryption is taken
  std::filesystem::path proxySocket;      // where a web server in front comes in, and nobody else
  std::string proxyUserHeader;            // the header by which it names its user there
  int addressConnections = 128;           // at a time, from one address
  std::filesystem::path site;             // the pages; default: the console of this program
  int workers = 4;                        // pages that run at a time
  int queue = 64;                         // requests that may wait for a worker; one more is answered 503
  host::PageLimits limits;                // of a page
  int workerMemory = 0;                   // MiB of addresses a worker may take; 0: what the script's limit needs
  std::string user;                       // whom workers serve as, where root starts them
  host::PartsSettings parts;              // the database, the mailboxes, the ranking and the locale
  int holdingDays = 14;                   // how long a deleted message is held
  std::filesystem::path run;              // sockets, process ids, nginx's files; default: a private folder of the user
  std::string web = "embedded";           // "external": for an nginx that is there already
  std::string nginx = "nginx";            // the program
  std::string log = "-";                  // a file, or "-" for standard error
  std::filesystem::path errorPages;       // a folder with 404.html, 500.html, 503.html ...; default: plain ones
  std::filesystem::path users;            // the users file; with it, everybody signs in
  std::filesystem::path audit;            // a private folder for the audit log; default: "audit" below `run`
  std::filesystem::path sessions;         // a private folder; default: "sessions" below `run`
  int sessionMinutes = 30;                // without a request, after which one signs in again
  int sessionsPerUser = 5;                // one more sign-in ends the user's oldest
  bool debug = false;                     // whether administrators may see a page's traces
  bool showErrors = false;                // whether administrators, or all without a users file, may see why one failed
  host::NamedTexts application;           // what `Application(name)` of a page answers
  std::string logon;                      // without a users file: who every visitor is
  host::NamedTexts session;               // and the session values every visitor has

  bool External() const { return web == "external"; }
  bool Encrypts() const { return !External() && !certificate.empty(); }

  // The parts, where a statement may take as long as a page.
  host::PartsSettings Parts() const;
};

// Reads a settings file. Relative paths in it start at the file's own folder. Fails with SettingError, which
// names file, line and key and says what would be right.
Settings ReadSettings(const std::filesystem::path& file);

// Checks what rules across settings ask for, and fills in the defaults that depend on others. Fails with
// SettingError.
void Complete(Settings& settings);

// Fills in the folders that `Complete` does, and looks at none: for a command that serves nothing.
void CompleteFolders(Settings& settings);

}  // namespace kalvo::web
