#include "host/web/holding_sweep.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <exception>
#include <string>

#include "adapters/mail/mail_store.h"
#include "base/file.h"
#include "host/web/log.h"
#include "kalvo/platform/append.h"

namespace kalvo::web {
namespace {

constexpr std::int64_t kEvery = 3600, kDay = 86'400;  // seconds

// An empty mark is one that nobody has swept for.
bool IsOld(const struct stat& mark) { return mark.st_size == 0 || mark.st_mtime + kEvery <= std::time(nullptr); }

}  // namespace

HoldingSweep::HoldingSweep(const std::filesystem::path& run, mail::MailStore* store, int days, const Log& log)
    : mark_(run / "swept"), store_(store), heldFor_(days * kDay), log_(log) {}

bool HoldingSweep::IsDue() const {
  struct stat mark {};
  return store_ && (stat(mark_.c_str(), &mark) != 0 || IsOld(mark));
}

void HoldingSweep::Run() {
  const base::File mark = store_ ? base::Open(mark_, O_RDWR | O_CREAT | O_NOFOLLOW) : base::File();
  if (!mark || flock(mark.Handle(), LOCK_EX | LOCK_NB) != 0 || !IsOld(base::StatusOf(mark))) return;
  // First the mark: what fails fails an hour later again, not at once.
  if (pwrite(mark.Handle(), "1", 1, 0) == 1) futimens(mark.Handle(), nullptr);
  try {
    const std::int32_t swept = store_->Sweep(std::time(nullptr) - heldFor_);
    if (swept > 0) {
      log_.Write(Built(
          [&](std::string& out) { Append(out, "deleted messages that were held long enough are gone: ", swept); }));
    }
  } catch (const std::exception& error) {
    log_.Write(std::string("deleted messages past their time could not be removed: ") + error.what());
  }
}

}  // namespace kalvo::web
