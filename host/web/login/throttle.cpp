#include "host/web/login/throttle.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>

#include "host/parts/setting_error.h"
#include "host/web/login/password.h"
#include "host/web/login/private_folder.h"
#include "platform/conversion.h"

namespace kalvo::web::login {
namespace {

namespace fs = std::filesystem;

enum class Whose { AccountAtAddress, Address, Account };

struct Rule {
  Whose whose;
  std::int64_t free;     // attempts without a wait
  std::int64_t longest;  // seconds; the first wait is 2, each next one is twice as long
};

// clang-format off
constexpr Rule kRules[] = {
// counted for              free  longest wait
  {Whose::AccountAtAddress, 4,    60},
  {Whose::Address,          30,   60},
  {Whose::Account,          50,   10},   // a stranger elsewhere cannot keep somebody out for longer
};
// clang-format on
constexpr std::int64_t kForgottenAfter = 60 * 60;  // seconds

struct Count {
  std::int64_t failed = 0;
  std::int64_t last = 0;  // seconds since 1970
};

std::int64_t WaitOf(const Rule& rule, const Count& count, std::int64_t now) {
  if (count.failed < rule.free) return 0;
  const std::int64_t doublings = std::min<std::int64_t>(count.failed - rule.free, 16);
  const std::int64_t wait = std::min<std::int64_t>(rule.longest, std::int64_t{2} << doublings);
  return std::max<std::int64_t>(0, count.last + wait - now);
}

// A count in its file, held until it goes.
class CountFile {
 public:
  CountFile(const fs::path& path, std::int64_t now) : path_(path) {
    file_ = open(path.c_str(), O_CREAT | O_RDWR | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (file_ < 0 || flock(file_, LOCK_EX) != 0) throw host::SettingError(path.string() + " cannot be written");
    if (pread(file_, &count, sizeof count, 0) != static_cast<ssize_t>(sizeof count)) count = {};
    if (now - count.last > kForgottenAfter) count = {};
  }
  ~CountFile() { close(file_); }
  CountFile(const CountFile&) = delete;
  CountFile& operator=(const CountFile&) = delete;

  void Keep() const {
    if (pwrite(file_, &count, sizeof count, 0) != static_cast<ssize_t>(sizeof count)) {
      throw host::SettingError(path_.string() + " cannot be written");
    }
  }

  Count count;

 private:
  fs::path path_;
  int file_ = -1;
};

fs::path PathOf(const fs::path& folder, Whose whose, std::string_view account, std::string_view address) {
  std::string key(1, static_cast<char>('0' + static_cast<int>(whose)));
  if (whose != Whose::Address) key += ToLower(account);
  key += '\n';
  if (whose != Whose::Account) key += address;
  return folder / Fingerprint(key);
}

}  // namespace

Throttle::Throttle(fs::path folder) : Throttle(std::move(folder), [] { return std::time(nullptr); }) {}

Throttle::Throttle(fs::path folder, Clock clock) : folder_(std::move(folder)), clock_(std::move(clock)) {
  MakePrivateFolder("sessions", folder_);
}

std::int64_t Throttle::Begin(std::string_view account, std::string_view address) {
  const std::int64_t now = clock_();
  std::int64_t wait = 0;
  for (const Rule& rule : kRules) {
    wait = std::max(wait, WaitOf(rule, CountFile(PathOf(folder_, rule.whose, account, address), now).count, now));
  }
  if (wait > 0) return wait;
  for (const Rule& rule : kRules) {
    CountFile file(PathOf(folder_, rule.whose, account, address), now);
    ++file.count.failed;
    file.count.last = now;
    file.Keep();
  }
  return 0;
}

void Throttle::Succeeded(std::string_view account, std::string_view address) {
  const std::int64_t now = clock_();
  for (const Rule& rule : kRules) {
    CountFile file(PathOf(folder_, rule.whose, account, address), now);
    // The address may be that of many people: only this attempt is taken back.
    file.count.failed = rule.whose == Whose::Address ? std::max<std::int64_t>(0, file.count.failed - 1) : 0;
    file.Keep();
  }
}

}  // namespace kalvo::web::login
