#include "host/web/login/throttle.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ctime>

#include "host/parts/setting_error.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace web;
using namespace web::login;

class Attempts : public testing::Test {
 protected:
  // How many of so many attempts in a row are heard.
  int Heard(int attempts, const std::string& account, const std::string& address) {
    int heard = 0;
    for (int i = 0; i < attempts; ++i) heard += throttle_.Begin(account, address) == 0;
    return heard;
  }

  // Attempts at one account from a new address each time, or at a new account from one address; the longest wait
  // before the next, each attempt made as soon as it is heard.
  std::vector<std::int64_t> Waits(int attempts, bool newAccounts, bool newAddresses) {
    std::vector<std::int64_t> waits;
    for (int i = 0; i < attempts; ++i) {
      const std::string account = "KALVO\\a" + std::to_string(newAccounts ? i : 0);
      const std::string address = "10.0.0." + std::to_string(newAddresses ? i : 0);
      const std::int64_t wait = throttle_.Begin(account, address);
      waits.push_back(wait);
      if (wait == 0) continue;
      now_ += wait - 1;
      EXPECT_EQ(throttle_.Begin(account, address), 1) << "a second too early, attempt " << i;
      now_ += 1;
      EXPECT_EQ(throttle_.Begin(account, address), 0) << "attempt " << i;
    }
    return waits;
  }

  TemporaryFolder folder_;
  std::int64_t now_ = 1'700'000'000;
  Throttle throttle_{folder_.Path() / "attempts", [this] { return now_; }};
};

TEST_F(Attempts, WaitTwiceAsLongEachTimeUpToALimit) {
  using Waits = std::vector<std::int64_t>;
  EXPECT_EQ(this->Waits(12, false, false), (Waits{0, 0, 0, 0, 2, 4, 8, 16, 32, 60, 60, 60}))
      << "one account, one address";
  const Waits ofAddress = this->Waits(40, true, false);
  EXPECT_EQ(Waits(ofAddress.begin() + 16, ofAddress.begin() + 27), (Waits{0, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1}))
      << "of one address, which has had twelve before";
}

TEST_F(Attempts, AtOneAccountFromEverywhereWaitTenSecondsAtMost) {
  const auto waits = Waits(130, false, true);
  EXPECT_EQ(std::vector<std::int64_t>(waits.begin() + 49, waits.begin() + 56),
            (std::vector<std::int64_t>{0, 2, 4, 8, 10, 10, 10}));
  EXPECT_EQ(waits[59], 10);
  EXPECT_EQ(waits[69], 10);
  EXPECT_EQ(waits[129], 10) << "however often it is doubled";
}

TEST_F(Attempts, AreForgottenAfterAnHour) {
  EXPECT_EQ(Heard(4, "KALVO\\alice", "10.0.0.1"), 4);
  now_ += 3600;
  EXPECT_EQ(throttle_.Begin("KALVO\\alice", "10.0.0.1"), 0) << "the wait is over, the count is not";
  EXPECT_EQ(throttle_.Begin("KALVO\\alice", "10.0.0.1"), 4);
  now_ += 3601;
  EXPECT_EQ(Heard(5, "KALVO\\alice", "10.0.0.1"), 4);
}

TEST_F(Attempts, OfAnAddressLoseNoMoreThanTheOneThatSucceeded) {
  for (int i = 0; i < 29; ++i) EXPECT_EQ(Heard(1, "KALVO\\user" + std::to_string(i), "10.0.0.1"), 1);
  EXPECT_EQ(Heard(1, "KALVO\\alice", "10.0.0.1"), 1);
  throttle_.Succeeded("KALVO\\alice", "10.0.0.1");
  EXPECT_EQ(Heard(1, "KALVO\\bob", "10.0.0.1"), 1) << "twenty-nine have failed";
  EXPECT_EQ(Heard(1, "KALVO\\carol", "10.0.0.1"), 0) << "now thirty have";
}

TEST_F(Attempts, AreCountedWhereNobodyElseLooks) {
  const mode_t before = umask(0);
  Throttle open(folder_.Path() / "open");
  open.Begin("KALVO\\alice", "10.0.0.1");
  umask(before);
  struct stat state {};
  ASSERT_EQ(stat((folder_.Path() / "open").c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 07777, 0700u);
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder_.Path() / "open")) {
    if (entry.is_directory()) continue;
    ASSERT_EQ(stat(entry.path().c_str(), &state), 0);
    EXPECT_EQ(state.st_mode & 07777, 0600u);
    EXPECT_EQ(entry.path().string().find("alice"), std::string::npos);
    ++files;
  }
  EXPECT_EQ(files, 3);
}

TEST_F(Attempts, CannotBeCountedBelowAFile) {
  WriteFile(folder_.Path() / "file", "");
  EXPECT_THROW(Throttle(folder_.Path() / "file" / "attempts"), host::SettingError);
}

TEST_F(Attempts, AreSlowedAfterTheFirstFew) {
  EXPECT_EQ(Heard(4, "KALVO\\alice", "10.0.0.1"), 4);
  const std::int64_t wait = throttle_.Begin("KALVO\\alice", "10.0.0.1");
  EXPECT_GE(wait, 1);
  EXPECT_LE(wait, 2);
}

TEST_F(Attempts, AtOneAccountDoNotSlowAnother) {
  Heard(10, "KALVO\\alice", "10.0.0.1");
  EXPECT_EQ(Heard(1, "KALVO\\bob", "10.0.0.1"), 1);
  EXPECT_EQ(Heard(1, "KALVO\\alice", "10.0.0.2"), 1) << "nor the same account from elsewhere";
}

TEST_F(Attempts, AtManyAccountsFromOneAddressAreSlowed) {
  int heard = 0;
  for (int i = 0; i < 50; ++i) heard += Heard(1, "KALVO\\user" + std::to_string(i), "10.0.0.1");
  EXPECT_EQ(heard, 30);
}

TEST_F(Attempts, AtOneAccountFromManyAddressesAreSlowed) {
  int heard = 0;
  for (int i = 0; i < 70; ++i) heard += Heard(1, "KALVO\\alice", "10.0.0." + std::to_string(i));
  EXPECT_EQ(heard, 50);
}

TEST_F(Attempts, AreCountedWithoutRegardToCase) {
  EXPECT_EQ(Heard(4, "KALVO\\alice", "10.0.0.1"), 4);
  EXPECT_EQ(Heard(1, "kalvo\\ALICE", "10.0.0.1"), 0);
}

TEST_F(Attempts, AreForgottenAfterASuccess) {
  EXPECT_EQ(Heard(3, "KALVO\\alice", "10.0.0.1"), 3);
  EXPECT_EQ(throttle_.Begin("KALVO\\alice", "10.0.0.1"), 0);
  throttle_.Succeeded("KALVO\\alice", "10.0.0.1");
  EXPECT_EQ(Heard(4, "KALVO\\alice", "10.0.0.1"), 4);
}

TEST_F(Attempts, OfStrangersDoNotHoldUpAnAddressThatIsKnown) {
  throttle_.Remember("KALVO\\alice", "10.0.0.1", "laptop");
  for (int i = 0; i < 80; ++i) Heard(1, "KALVO\\alice", "10.0.1." + std::to_string(i));
  for (int i = 0; i < 80; ++i) Heard(1, "KALVO\\user" + std::to_string(i), "10.0.0.1");
  EXPECT_EQ(Heard(1, "KALVO\\alice", "10.0.2.1"), 0) << "they hold up a new address";
  EXPECT_EQ(Heard(1, "KALVO\\bob", "10.0.0.1"), 0) << "and another account at this one";
  EXPECT_EQ(Heard(9, "KALVO\\alice", "10.0.0.1"), 4) << "but not her, who has her own count";
}

TEST_F(Attempts, OfStrangersDoNotHoldUpABrowserThatIsKnown) {
  throttle_.Remember("KALVO\\alice", "10.0.0.9", "laptop");
  for (int i = 0; i < 80; ++i) Heard(1, "KALVO\\alice", "10.0.1." + std::to_string(i));
  Heard(9, "KALVO\\alice", "10.0.0.1");
  EXPECT_EQ(throttle_.Begin("kalvo\\ALICE", "10.0.0.1", "laptop"), 0);
  EXPECT_GT(throttle_.Begin("KALVO\\alice", "10.0.0.1", "another"), 0) << "nobody makes up a browser";
  EXPECT_GT(throttle_.Begin("KALVO\\alice", "10.0.0.1", ""), 0);
  int heard = 1;
  for (int i = 0; i < 9; ++i) heard += throttle_.Begin("KALVO\\alice", "10.0.0.1", "laptop") == 0;
  EXPECT_EQ(heard, 4) << "who stole the browser's cookie guesses no faster than others";
  throttle_.Succeeded("KALVO\\alice", "10.0.0.1", "laptop");
  for (int i = 0; i < 80; ++i) Heard(1, "KALVO\\bob", "10.0.2." + std::to_string(i));
  EXPECT_GT(throttle_.Begin("KALVO\\bob", "10.0.0.1", "laptop"), 0) << "to another account it is a stranger's";
}

TEST_F(Attempts, FromAPlaceThatWasKnownLongAgoAreAStrangers) {
  throttle_.Remember("KALVO\\alice", "10.0.0.1", "laptop");
  for (int day = 0; day < 29; ++day) now_ += 24 * 3600;
  for (int i = 0; i < 80; ++i) Heard(1, "KALVO\\alice", "10.0.1." + std::to_string(i));
  EXPECT_EQ(Heard(1, "KALVO\\alice", "10.0.0.1"), 0);
  EXPECT_GT(throttle_.Begin("KALVO\\alice", "10.0.0.1", "laptop"), 0);
}

TEST_F(Attempts, FromAPlaceThatWasKnownFourWeeksAgoAreNot) {
  throttle_.Remember("KALVO\\alice", "10.0.0.1", "laptop");
  now_ += 2'419'200;  // seconds
  EXPECT_EQ(Heard(9, "KALVO\\alice", "10.0.0.1"), 4);
  for (int i = 0; i < 80; ++i) Heard(1, "KALVO\\alice", "10.0.1." + std::to_string(i));
  EXPECT_EQ(throttle_.Begin("KALVO\\alice", "10.0.0.9", "laptop"), 0);
  now_ += 1;
  EXPECT_GT(throttle_.Begin("KALVO\\alice", "10.0.0.9", "laptop"), 0);
}

TEST_F(Attempts, ThatNeverFailedLendNoneToOthers) {
  throttle_.Succeeded("KALVO\\alice", "10.0.0.1");
  int heard = 0;
  for (int i = 0; i < 50; ++i) heard += Heard(1, "KALVO\\user" + std::to_string(i), "10.0.0.1");
  EXPECT_EQ(heard, 30);
}

TEST_F(Attempts, ThatAreNotHeardLeaveNoFiles) {
  const auto files = [&] {
    const std::filesystem::directory_iterator all(folder_.Path() / "attempts");
    return std::distance(begin(all), end(all));
  };
  for (int i = 0; i < 30; ++i) Heard(1, "KALVO\\user" + std::to_string(i), "10.0.0.1");
  const auto before = files();
  for (int i = 30; i < 200; ++i) Heard(1, "KALVO\\user" + std::to_string(i), "10.0.0.1");
  EXPECT_EQ(files(), before);
}

TEST_F(Attempts, ThatAreForgottenAreSwept) {
  now_ = std::time(nullptr);
  for (int i = 0; i < 20; ++i) Heard(1, "KALVO\\user" + std::to_string(i), "10.0.0." + std::to_string(i));
  for (const auto& entry : std::filesystem::directory_iterator(folder_.Path() / "attempts")) {
    const timespec old{now_ - 3601, 0};
    const timespec times[] = {old, old};
    if (entry.is_regular_file()) utimensat(AT_FDCWD, entry.path().c_str(), times, 0);
  }
  now_ += 601;
  Heard(1, "KALVO\\carol", "10.0.0.99");
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder_.Path() / "attempts")) {
    files += entry.is_regular_file();
  }
  EXPECT_EQ(files, 3) << "those of the last attempt";
}

TEST_F(Attempts, ByManyProcessesAtOnceAreHeardAsOftenAsByOne) {
  constexpr int kProcesses = 8;
  for (int i = 0; i < kProcesses; ++i) {
    if (fork() == 0) _exit(Heard(4, "KALVO\\alice", "10.0.0.1"));
  }
  int heard = 0;
  for (int i = 0; i < kProcesses; ++i) {
    int status = 0;
    wait(&status);
    heard += WEXITSTATUS(status);
  }
  EXPECT_EQ(heard, 4);
}

TEST_F(Attempts, AreCountedForAllProcesses) {
  EXPECT_EQ(Heard(4, "KALVO\\alice", "10.0.0.1"), 4);
  Throttle another(folder_.Path() / "attempts", [this] { return now_; });
  EXPECT_GT(another.Begin("KALVO\\alice", "10.0.0.1"), 0);
}

}  // namespace
}  // namespace kalvo::test
