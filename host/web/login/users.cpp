#include "host/web/login/users.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sstream>

#include "base/fresh_file.h"
#include "host/parts/setting_error.h"
#include "host/web/login/password.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::web::login {
namespace {

namespace fs = std::filesystem;
using host::SettingError;

constexpr std::string_view kDomain = "KALVO";
constexpr std::size_t kLongestPart = 64;
constexpr std::size_t kLargestFile = std::size_t{16} << 20;  // bytes: some hundred thousand users

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
  if (!TakeRights(user, rights)) return std::nullopt;
  if (user.hash != kNoPassword && !IsPasswordHash(user.hash)) return std::nullopt;
  return user;
}

bool IsOf(const std::string& line, std::string_view account) {
  return !IsComment(line) && EqualsIgnoringCase(line.substr(0, line.find(' ')), account);
}

// Editors of one file wait for each other.
class EditLock {
 public:
  explicit EditLock(const fs::path& file) : lock_(base::Open(file.string() + ".lock", O_CREAT | O_RDWR | O_NOFOLLOW)) {
    if (!lock_ || flock(lock_.Handle(), LOCK_EX) != 0) {
      throw SettingError(file.string() + " cannot be locked: " + std::strerror(errno));
    }
    GiveToOwnerOf(file);
  }

 private:
  // Root edits, and the service that the file belongs to goes on editing.
  void GiveToOwnerOf(const fs::path& file) const {
    const struct stat lock = base::StatusOf(lock_);
    struct stat owned {};
    if (geteuid() != 0 || lock.st_uid != 0 || lock.st_nlink != 1) return;
    if (stat(file.c_str(), &owned) != 0 || owned.st_uid == 0) return;
    if (fchown(lock_.Handle(), owned.st_uid, owned.st_gid) != 0) { /* it has to be deleted by hand then */
    }
  }

  base::File lock_;
};

std::string Octal(mode_t mode) {
  char digits[8];
  std::snprintf(digits, sizeof digits, "%04o", static_cast<unsigned>(mode & 07777));
  return digits;
}

// Whoever can write the file, or put another in its place, makes himself an administrator.
void RefuseIfOthersWrite(const struct stat& file, const fs::path& name) {
  if (!S_ISREG(file.st_mode)) throw SettingError("the users file " + name.string() + " is not a file");
  if ((file.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
    throw SettingError("the users file " + name.string() + " may be written by others than its owner (mode " +
                       Octal(file.st_mode) + "); chmod go-w mends that");
  }
  // The folder of a link, and the one that it leads to.
  std::error_code failed;
  for (const fs::path& place : {fs::absolute(name), fs::canonical(name, failed)}) {
    const fs::path folder = place.parent_path();
    struct stat around {};
    if (stat(folder.c_str(), &around) != 0 || (around.st_mode & S_IWOTH) == 0 || (around.st_mode & S_ISVTX) != 0)
      continue;
    throw SettingError("the users file " + name.string() + " lies in a folder where everybody may replace it (mode " +
                       Octal(around.st_mode) + "); chmod o-w " + folder.string() + " mends that");
  }
}

[[noreturn]] void FailToRead(const fs::path& file) {
  throw SettingError("the users file " + file.string() + " cannot be read: " + std::strerror(errno));
}

}  // namespace

std::string User::Stamp() const { return Fingerprint(LineOf(*this)); }

std::optional<std::string> AccountNamed(std::string_view name) {
  const std::size_t slash = name.find('\\');
  const std::string_view domain = slash == std::string::npos ? kDomain : name.substr(0, slash);
  const std::string_view person = slash == std::string::npos ? name : name.substr(slash + 1);
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

void UsersFile::CheckModes() const { Lines(); }

std::string UsersFile::Warning() const {
  struct stat file {};
  if (stat(file_.c_str(), &file) != 0 || (file.st_mode & S_IROTH) == 0) return "";
  return "the users file " + file_.string() + " may be read by everybody (mode " + Octal(file.st_mode) +
         "), who can then guess its passwords at leisure; chmod o-r mends that";
}

void UsersFile::Put(const User& user) {
  const EditLock lock(file_);
  std::vector<std::string> lines = fs::exists(file_) ? Lines() : std::vector<std::string>();
  std::erase_if(lines, [&](const std::string& line) { return IsOf(line, user.account); });
  lines.push_back(LineOf(user));
  Write(lines);
}

bool UsersFile::ChangeHash(std::string_view account, std::string_view oldHash, const std::string& newHash) {
  const EditLock lock(file_);
  std::optional<User> user = Find(account);
  if (!user || user->hash != oldHash) return false;
  user->hash = newHash;
  std::vector<std::string> lines = Lines();
  for (std::string& line : lines) {
    if (IsOf(line, account)) line = LineOf(*user);
  }
  Write(lines);
  return true;
}

bool UsersFile::Remove(std::string_view account) {
  const EditLock lock(file_);
  std::vector<std::string> lines = fs::exists(file_) ? Lines() : std::vector<std::string>();
  if (std::erase_if(lines, [&](const std::string& line) { return IsOf(line, account); }) == 0) return false;
  Write(lines);
  return true;
}

std::vector<std::string> UsersFile::Lines() const {
  const base::File file = base::Open(file_, O_RDONLY | O_NONBLOCK);
  if (!file) FailToRead(file_);
  RefuseIfOthersWrite(base::StatusOf(file), file_);
  auto text = base::ReadAll(file, kLargestFile);
  if (!text) FailToRead(file_);
  std::istringstream in(std::move(*text));
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) {
    if (line.ends_with('\r')) line.pop_back();
    lines.push_back(std::move(line));
  }
  return lines;
}

// Whoever may read the old file reads the new one too.
void UsersFile::Write(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) Append(text, line, '\n');
  struct stat before {};
  const bool replaces = stat(file_.c_str(), &before) == 0;
  base::FreshFile fresh(file_, {base::Durable::Yes});
  const int file = fresh.Get().Handle();
  const bool written =
      fresh.Get() &&
      (!replaces || (fchmod(file, before.st_mode & 07777) == 0 && fchown(file, before.st_uid, before.st_gid) == 0)) &&
      fresh.Write(text) && fresh.TakePlace();
  if (!written) throw SettingError(file_.string() + " cannot be replaced: " + std::strerror(errno));
}

}  // namespace kalvo::web::login
