#include "host/web/login/users.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "host/parts/setting_error.h"
#include "host/web/login/password.h"
#include "platform/append.h"
#include "platform/conversion.h"

namespace kalvo::web::login {
namespace {

namespace fs = std::filesystem;
using host::SettingError;

constexpr std::string_view kDomain = "KALVO";
constexpr std::size_t kLongestPart = 64;

struct Right {
  std::string_view word;
  bool User::*flag;
};
constexpr Right kRights[] = {{"administrator", &User::administrator}, {"drill-down", &User::drillDown}};

bool IsPart(std::string_view part) {
  return !part.empty() && part.size() <= kLongestPart && std::all_of(part.begin(), part.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 || std::isalnum(byte) || c == '.' || c == '-' || c == '_';
  });
}

std::string RightsOf(const User& user) {
  std::string text;
  for (const Right& right : kRights) {
    if (user.*right.flag) Append(text, text.empty() ? "" : ",", right.word);
  }
  return text.empty() ? "-" : text;
}

bool TakeRights(User& user, const std::string& text) {
  if (text == "-") return true;
  std::istringstream words(text);
  for (std::string word; std::getline(words, word, ',');) {
    const auto right = std::find_if(std::begin(kRights), std::end(kRights),
                                    [&](const Right& candidate) { return candidate.word == word; });
    if (right == std::end(kRights)) return false;
    user.*right->flag = true;
  }
  return true;
}

std::string LineOf(const User& user) {
  return Built([&](std::string& out) { Append(out, user.account, ' ', RightsOf(user), ' ', user.hash); });
}

bool IsComment(const std::string& line) { return line.empty() || line[0] == '#'; }

// Nothing for a line that describes no user.
std::optional<User> ReadLine(const std::string& line) {
  std::istringstream words(line);
  User user;
  std::string rights, more;
  words >> user.account >> rights >> user.hash;
  if (!words || words >> more || AccountNamed(user.account) != user.account) return std::nullopt;
  if (!TakeRights(user, rights) || !IsPasswordHash(user.hash)) return std::nullopt;
  return user;
}

bool IsOf(const std::string& line, std::string_view account) {
  return !IsComment(line) && EqualsIgnoringCase(line.substr(0, line.find(' ')), account);
}

// Editors of one file wait for each other.
class EditLock {
 public:
  explicit EditLock(const fs::path& file)
      : lock_(open((file.string() + ".lock").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600)) {
    if (lock_ < 0 || flock(lock_, LOCK_EX) != 0) throw SettingError(file.string() + " cannot be locked");
  }
  ~EditLock() { close(lock_); }
  EditLock(const EditLock&) = delete;
  EditLock& operator=(const EditLock&) = delete;

 private:
  int lock_;
};

void WriteAll(int file, std::string_view text, const fs::path& name) {
  while (!text.empty()) {
    const ssize_t written = write(file, text.data(), text.size());
    if (written < 0) throw SettingError(name.string() + " cannot be written");
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

}  // namespace

std::string User::Stamp() const { return Fingerprint(LineOf(*this)); }

std::optional<std::string> AccountNamed(std::string_view name) {
  const std::size_t slash = name.find('\\');
  const std::string_view domain = slash == std::string_view::npos ? kDomain : name.substr(0, slash);
  const std::string_view person = slash == std::string_view::npos ? name : name.substr(slash + 1);
  if (!IsPart(domain) || !IsPart(person)) return std::nullopt;
  return Built([&](std::string& out) { Append(out, domain, '\\', person); });
}

std::optional<User> UsersFile::Find(std::string_view account) const {
  const std::vector<std::string> lines = Lines();
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (!IsOf(lines[i], account)) continue;
    if (auto user = ReadLine(lines[i])) return user;
    throw SettingError(Built([&](std::string& out) {
      Append(out, file_.string(), ':', i + 1, ": a line is ACCOUNT RIGHTS HASH; `kalvo passwd` writes it");
    }));
  }
  return std::nullopt;
}

void UsersFile::Put(const User& user) {
  const EditLock lock(file_);
  std::vector<std::string> lines = fs::exists(file_) ? Lines() : std::vector<std::string>();
  std::erase_if(lines, [&](const std::string& line) { return IsOf(line, user.account); });
  lines.push_back(LineOf(user));
  Write(lines);
}

bool UsersFile::Remove(std::string_view account) {
  const EditLock lock(file_);
  std::vector<std::string> lines = fs::exists(file_) ? Lines() : std::vector<std::string>();
  if (std::erase_if(lines, [&](const std::string& line) { return IsOf(line, account); }) == 0) return false;
  Write(lines);
  return true;
}

std::vector<std::string> UsersFile::Lines() const {
  std::ifstream in(file_);
  if (!in) throw SettingError("the users file " + file_.string() + " cannot be read");
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) {
    if (line.ends_with('\r')) line.pop_back();
    lines.push_back(std::move(line));
  }
  return lines;
}

void UsersFile::Write(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) Append(text, line, '\n');
  const fs::path fresh = file_.string() + ".new";
  const int file = open(fresh.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0600);
  if (file < 0) throw SettingError(fresh.string() + " cannot be written");
  struct stat before {};
  if (stat(file_.c_str(), &before) == 0) {
    // Whoever may read the old file reads the new one too.
    if (fchmod(file, before.st_mode & 07777) != 0 || fchown(file, before.st_uid, before.st_gid) != 0) {
      close(file);
      throw SettingError(fresh.string() + " cannot be given the rights of " + file_.string());
    }
  }
  WriteAll(file, text, fresh);
  fsync(file);
  close(file);
  fs::rename(fresh, file_);
}

}  // namespace kalvo::web::login
