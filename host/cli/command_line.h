#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "host/parts/parts.h"

namespace kalvo::host {

struct PageArguments {
  std::string page;
  std::string root;
  std::optional<std::string> url;
  std::string query;
  std::optional<std::string> form;
  std::string logon;
  std::vector<std::pair<std::string, std::string>> application;  // name and text
  std::vector<std::pair<std::string, std::string>> session;      // name and value
  std::vector<std::pair<std::string, std::string>> statics;      // name and file
  PartsSettings parts;
  PageLimits limits;
  bool headers = false;
  bool edge = false;
  bool strict = false;
  std::optional<std::string> check;  // a site's folder: its pages are compiled, none is run
};

struct ServeArguments {
  std::optional<std::string> config;
  std::optional<std::string> listen;
  std::optional<std::string> site;
  std::optional<int> workers;
};

struct SampleArguments {
  std::string out;
  std::string size = "small";
  std::optional<std::uint64_t> seed;
  std::string mail = "all";
};

struct CheckArguments {
  std::optional<std::string> config;
  std::optional<std::string> attack;  // the address of a system to be asked
  std::optional<std::string> cookie;  // the file with a visitor's Cookie header, or "-"
};

struct PasswdArguments {
  std::optional<std::string> users;   // the users file, or
  std::optional<std::string> config;  // the settings that name it
  std::string name;                   // "" with `endSessions` for everybody
  bool administrator = false;
  bool drillDown = false;
  bool remove = false;
  bool endSessions = false;
  bool noPassword = false;
};

struct UndeleteArguments {
  std::string config;
  std::string id;    // "": the deleted messages are listed
  std::string into;  // a folder's path; "": where it was
};

struct AuditArguments {
  std::optional<std::string> config, folder;
  bool verify = false;
  std::string hash;  // one that the log has to have
  std::string event, user, since, until;
  std::size_t last = 1000;
};

using Arguments = std::variant<PageArguments, ServeArguments, SampleArguments, CheckArguments, PasswdArguments,
                               UndeleteArguments, AuditArguments>;

// Exit codes of every sub-command.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kWrongUsage = 2;

// Reads a command line: what to run, or the code to exit with at once, after the help or what is wrong with the
// line has been printed.
std::variant<Arguments, int> ParseArguments(int count, char** words);

}  // namespace kalvo::host
