#include "host/web/login/throttle.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <span>
#include <string>
#include <vector>

#include "base/file.h"
#include "base/private_folder.h"
#include "host/web/login/kept_folder.h"
#include "host/web/login/password.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::web::login {
namespace {

namespace fs = std::filesystem;

enum class Whose { AccountAtAddress, Address, Account, AccountOnDevice };

struct Rule {
  Whose whose;
  std::int64_t free;     // attempts without a wait
  std::int64_t longest;  // seconds; the first wait is 2 or that, each next one is twice as long
};

// clang-format off
constexpr Rule kOnKnownDevice[] = {
// counted for              free  longest wait
  {Whose::AccountOnDevice,  4,    60},
};
constexpr Rule kAtKnownAddress[] = {
  {Whose::AccountAtAddress, 4,    60},
};
constexpr Rule kOfStrangers[] = {
  {Whose::AccountAtAddress, 4,    60},
  {Whose::Address,          30,   1},    // many people may share it: one attempt a second is heard
  {Whose::Account,          50,   10},   // a stranger elsewhere cannot keep somebody out for longer
};
// clang-format on
constexpr std::int64_t kForgottenAfter = 60 * 60;         // seconds, of failures
constexpr std::int64_t kKnownFor = 4 * 7 * 24 * 60 * 60;  // seconds, of successes
constexpr std::int64_t kBetweenSweeps = 10 * 60;          // seconds

struct Count {
  std::int64_t failed = 0;
  std::int64_t last = 0;  // seconds since 1970
};

std::int64_t WaitOf(const Rule& rule, const Count& count, std::int64_t now) {
  if (now - count.last > kForgottenAfter || count.failed < rule.free) return 0;
  const std::int64_t doublings = std::min<std::int64_t>(count.failed - rule.free, 16);
  const std::int64_t wait = std::min<std::int64_t>(rule.longest, std::int64_t{2} << doublings);
  return std::max<std::int64_t>(0, count.last + wait - now);
}

Count CountIn(const base::File& file) {
  Count count;
  if (pread(file.Handle(), &count, sizeof count, 0) != static_cast<ssize_t>(sizeof count)) return {};
  return count;
}

// A count that was kept; none where nothing was counted yet.
Count ReadCount(const fs::path& path) { return CountIn(base::Open(path, O_RDONLY | O_NOFOLLOW)); }

// A count in its file, held until it goes.
class CountFile {
 public:
  CountFile(fs::path path, std::int64_t now)
      : path_(std::move(path)), file_(base::Open(path_, O_CREAT | O_RDWR | O_NOFOLLOW)) {
    if (!file_ || flock(file_.Handle(), LOCK_EX) != 0) Refuse();
    count = CountIn(file_);
    if (now - count.last > kForgottenAfter) count = {};
  }

  void Keep() const {
    if (pwrite(file_.Handle(), &count, sizeof count, 0) != static_cast<ssize_t>(sizeof count)) Refuse();
  }

  Count count;

 private:
  [[noreturn]] void Refuse() const { throw NotKept(path_.string() + ": " + std::strerror(errno)); }

  fs::path path_;
  base::File file_;
};

std::string KeyOf(Whose whose, std::string_view account, std::string_view address, std::string_view device) {
  std::string key(1, static_cast<char>('0' + static_cast<int>(whose)));
  if (whose != Whose::Address) key += ToLower(account);
  key += '\n';
  if (whose == Whose::AccountOnDevice) {
    key += device;
  } else if (whose != Whose::Account) {
    key += address;
  }
  return key;
}

}  // namespace

// The rules that hold for an attempt, and where each counts.
struct Throttle::Counted {
  std::span<const Rule> rules;
  std::vector<fs::path> paths;

  std::int64_t Wait(std::int64_t now) const {
    std::int64_t wait = 0;
    for (std::size_t i = 0; i < rules.size(); ++i) wait = std::max(wait, WaitOf(rules[i], ReadCount(paths[i]), now));
    return wait;
  }

  // Every count held at once, so that two attempts do not pass where one may. The rules' order is everybody's, so
  // nobody waits for somebody who waits for him.
  std::vector<CountFile> Hold(std::int64_t now) const {
    std::vector<CountFile> held;
    for (const fs::path& path : paths) held.emplace_back(path, now);
    return held;
  }
};

Throttle::Throttle(fs::path folder) : Throttle(std::move(folder), [] { return std::time(nullptr); }) {}

Throttle::Throttle(fs::path folder, Clock clock) : folder_(std::move(folder)), clock_(std::move(clock)) {
  MakePrivateFolder("sessions", folder_);
  MakePrivateFolder("sessions", folder_ / "known");
}

fs::path Throttle::KnownPath(std::string_view account, std::string_view place) const {
  return folder_ / "known" / Fingerprint(ToLower(account) + "\n" + std::string(place));
}

bool Throttle::IsKnown(std::string_view account, std::string_view place, std::int64_t now) const {
  if (place.empty()) return false;
  const Count count = ReadCount(KnownPath(account, place));
  return count.last > 0 && now - count.last <= kKnownFor;
}

Throttle::Counted Throttle::CountedFor(std::string_view account, std::string_view address,
                                       std::string_view device) const {
  const std::int64_t now = clock_();
  Counted counted{kOfStrangers, {}};
  if (IsKnown(account, address, now)) counted.rules = kAtKnownAddress;
  if (IsKnown(account, device, now)) counted.rules = kOnKnownDevice;
  for (const Rule& rule : counted.rules) {
    counted.paths.push_back(folder_ / Fingerprint(KeyOf(rule.whose, account, address, device)));
  }
  return counted;
}

std::int64_t Throttle::Begin(std::string_view account, std::string_view address, std::string_view device) {
  const std::int64_t now = clock_();
  const Counted counted = CountedFor(account, address, device);
  // Who is not heard leaves no file behind.
  if (const std::int64_t wait = counted.Wait(now); wait > 0) return wait;
  SweepNowAndThen(now);
  auto held = counted.Hold(now);
  if (const std::int64_t wait = counted.Wait(now); wait > 0) return wait;
  for (CountFile& file : held) {
    ++file.count.failed;
    file.count.last = now;
    file.Keep();
  }
  return 0;
}

void Throttle::Succeeded(std::string_view account, std::string_view address, std::string_view device) {
  const Counted counted = CountedFor(account, address, device);
  auto held = counted.Hold(clock_());
  for (std::size_t i = 0; i < held.size(); ++i) {
    // The address may be that of many people: only this attempt is taken back.
    const bool many = counted.rules[i].whose == Whose::Address;
    held[i].count.failed = many ? std::max<std::int64_t>(0, held[i].count.failed - 1) : 0;
    held[i].Keep();
  }
}

void Throttle::Remember(std::string_view account, std::string_view address, std::string_view device) {
  for (const std::string_view place : {address, device}) {
    CountFile file(KnownPath(account, place), 0);
    file.count.last = clock_();
    file.Keep();
  }
}

// By whoever is heard, so no more often than attempts are.
void Throttle::SweepNowAndThen(std::int64_t now) const {
  const fs::path mark = folder_ / "known" / "swept";
  if (now - ReadCount(mark).last < kBetweenSweeps) return;
  CountFile file(mark, 0);
  file.count.last = now;
  file.Keep();
  base::RemoveOlderThan(folder_, kForgottenAfter);
  base::RemoveOlderThan(folder_ / "known", kKnownFor);
}

}  // namespace kalvo::web::login
