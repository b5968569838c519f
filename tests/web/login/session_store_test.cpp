#include "host/web/login/session_store.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>
#include <vector>

#include "host/parts/setting_error.h"
#include "host/web/log.h"
#include "host/web/login/password.h"
#include "kalvo/platform/live_mailbox.h"
#include "support/full_disk.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace web;
using namespace web::login;

using std::chrono::milliseconds;

const User kAlice{"KALVO\\alice", true, false, "$argon2id$alice"};

class Sessions : public testing::Test {
 protected:
  SessionStore Store(const Lifetimes& lifetimes = {}, Waiting waiting = {}) {
    if (!waiting.isWanted) waiting.isWanted = [this] { return ++looks_ > 0; };
    return {folder_.Path() / "sessions", lifetimes, nobody_, log_, std::move(waiting)};
  }

  // The files of the sessions; what else the store keeps lies in folders.
  std::vector<std::filesystem::path> All() {
    std::vector<std::filesystem::path> all;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path() / "sessions")) {
      if (entry.is_regular_file()) all.push_back(entry.path());
    }
    return all;
  }

  // Makes every session look as old as that.
  void Age(std::int64_t seconds) {
    for (const auto& path : All()) {
      const timespec then{std::time(nullptr) - seconds, 0};
      const timespec times[] = {then, then};
      utimensat(AT_FDCWD, path.c_str(), times, 0);
    }
  }

  std::size_t Files() { return All().size(); }

  // Another request, which waits for the session in the background. It has its seat when this returns.
  std::thread WaitFor(SessionStore& store, const std::string& id, bool& got) {
    const int before = looks_;
    std::thread waiter([&store, id, &got] { got = store.Open(id, milliseconds(20'000)) != nullptr; });
    while (looks_ == before) std::this_thread::sleep_for(milliseconds(1));
    return waiter;
  }

  // Somebody who waits for a session has a file beside the seats.
  std::size_t Waiters() {
    std::size_t waiters = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path() / "sessions" / "waiting")) {
      waiters += entry.path().extension() == ".session";
    }
    return waiters;
  }

  TemporaryFolder folder_;
  Log log_{(folder_.Path() / "log").string()};
  host::LiveDrillerMaker nobody_;
  std::atomic<int> looks_{0};  // of those who wait, whether they still want to
};

TEST_F(Sessions, BeginWithTheRightsOfTheUsersFile) {
  const struct {
    bool administrator, drillDown;
    Value expectedAdministrator, expectedDrillDown;
  } kCases[] = {
      {true, true, std::string("Yes"), std::string("Yes")},
      {true, false, std::string("Yes"), Empty{}},
      {false, true, Empty{}, std::string("Yes")},
      {false, false, Empty{}, Empty{}},
  };
  SessionStore store = Store();
  for (const auto& c : kCases) {
    const auto session = store.Open(store.Create({"KALVO\\bob", c.administrator, c.drillDown, "$argon2id$x"}), {});
    ASSERT_TRUE(session);
    EXPECT_EQ(session->Account(), "KALVO\\bob");
    EXPECT_EQ(session->Get("KalvoAdministrator"), c.expectedAdministrator);
    EXPECT_EQ(session->Get("KalvoDrillDownAuth"), c.expectedDrillDown);
  }
}

TEST_F(Sessions, KeepValuesFromPageToPage) {
  SessionStore store = Store();
  const std::string id = store.Create(kAlice);
  store.Open(id, {})->Set("Visits", std::int32_t{1});
  SessionStore another = Store();
  const auto session = another.Open(id, {});
  ASSERT_TRUE(session);
  EXPECT_EQ(session->Get("visits"), Value(std::int32_t{1}));
  EXPECT_EQ(session->Get("KalvoAdministrator"), Value(std::string("Yes")));
  EXPECT_TRUE(session->BelongsTo(kAlice));
}

TEST_F(Sessions, HaveIdentifiersThatNobodyHadAndFilesThatDoNotTellThem) {
  SessionStore store = Store();
  const std::string first = store.Create(kAlice), second = store.Create(kAlice);
  EXPECT_NE(first, second);
  for (const auto& path : All()) {
    EXPECT_EQ(path.string().find(first), std::string::npos);
    EXPECT_EQ(ReadFile(path).find(first), std::string::npos);
    struct stat state {};
    stat(path.c_str(), &state);
    EXPECT_EQ(state.st_mode & 0777, 0600u);
  }
}

TEST_F(Sessions, AreNotFoundByAnythingElse) {
  SessionStore store = Store();
  const std::string id = store.Create(kAlice);
  std::string other = id;
  other[0] = other[0] == 'a' ? 'b' : 'a';
  for (const std::string& no :
       {std::string(), other, id.substr(1), id + "0", std::string("../../etc/passwd"), "../sessions/" + id,
        std::string(64, '/'), std::string(100'000, 'a'), std::string(64, '\0')}) {
    EXPECT_FALSE(store.Open(no, {}));
  }
  EXPECT_TRUE(store.Open(id, {}));
}

TEST_F(Sessions, AreGoneWhenAbandoned) {
  SessionStore store = Store();
  const std::string id = store.Create(kAlice);
  {
    const auto session = store.Open(id, {});
    session->Set("x", true);
    session->Abandon();
  }
  EXPECT_FALSE(store.Open(id, {}));
  EXPECT_EQ(Files(), 0u);
}

TEST_F(Sessions, LastHalfAnHourUnaskedAndTwelveHoursInAll) {
  EXPECT_EQ(Lifetimes().idle, 1800);
  EXPECT_EQ(Lifetimes().longest, 43'200);
}

TEST_F(Sessions, AreInAFolderOfTheOwnersAlone) {
  const mode_t before = umask(0);
  SessionStore store = Store();
  umask(before);
  struct stat state {};
  ASSERT_EQ(stat((folder_.Path() / "sessions").c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 07777, 0700u);
}

TEST_F(Sessions, ExpireWhenNobodyAsks) {
  SessionStore store = Store({.idle = 60, .longest = 1000});
  const std::string id = store.Create(kAlice);
  Age(50);
  EXPECT_TRUE(store.Open(id, {})) << "and is used again by this";
  Age(61);
  EXPECT_FALSE(store.Open(id, {}));
  EXPECT_EQ(Files(), 0u);
}

TEST_F(Sessions, ExpireHoweverOftenSomebodyAsks) {
  SessionStore store = Store({.idle = 60, .longest = -1});
  EXPECT_FALSE(store.Open(store.Create(kAlice), {}));
}

TEST_F(Sessions, OfOthersAreSweptWhenTheyHaveExpired) {
  SessionStore store = Store({.idle = 60, .longest = 1000});
  store.Create(kAlice);
  store.Create(kAlice);
  Age(100);
  store.Create(kAlice);
  EXPECT_EQ(Files(), 1u);
}

TEST_F(Sessions, AreHeldByOnePageAtATime) {
  SessionStore store = Store();
  const std::string id = store.Create(kAlice);
  auto held = store.Open(id, {});
  EXPECT_THROW(store.Open(id, milliseconds(30)), SessionBusy);
  held.reset();
  EXPECT_TRUE(store.Open(id, {}));
}

TEST_F(Sessions, WaitForThePageBeforeAndSeeWhatItWrote) {
  SessionStore store = Store();
  const std::string id = store.Create(kAlice);
  auto held = store.Open(id, {});
  held->Set("x", std::int32_t{1});
  std::thread other([&] {
    std::this_thread::sleep_for(milliseconds(100));
    held.reset();
  });
  const auto session = store.Open(id, milliseconds(5000));
  other.join();
  ASSERT_TRUE(session);
  EXPECT_EQ(session->Get("x"), Value(std::int32_t{1}));
}

TEST_F(Sessions, AreWaitedForByOneRequestAtATime) {
  SessionStore store = Store({}, {.seats = 4});
  const std::string id = store.Create(kAlice);
  auto held = store.Open(id, {});
  bool got = false;
  std::thread waiter = WaitFor(store, id, got);
  const auto before = std::chrono::steady_clock::now();
  EXPECT_THROW(store.Open(id, milliseconds(60'000)), SessionBusy);
  EXPECT_LT(std::chrono::steady_clock::now() - before, milliseconds(30'000)) << "at once";
  held.reset();
  waiter.join();
  EXPECT_TRUE(got);
  EXPECT_EQ(Waiters(), 0u);
  EXPECT_TRUE(store.Open(id, {}));
}

TEST_F(Sessions, AreWaitedForByNoMoreThanThereAreSeats) {
  SessionStore store = Store({}, {.seats = 1}), full = Store({}, {.seats = 0});
  const std::string one = store.Create(kAlice), two = store.Create(kAlice);
  auto first = store.Open(one, {}), second = store.Open(two, {});
  EXPECT_THROW(full.Open(one, milliseconds(60'000)), SessionBusy);
  bool got = false;
  std::thread waiter = WaitFor(store, one, got);
  EXPECT_THROW(store.Open(two, milliseconds(60'000)), SessionBusy);
  EXPECT_EQ(Waiters(), 1u) << "whoever found no seat left nothing behind";
  first.reset();
  waiter.join();
  EXPECT_TRUE(got);
}

TEST_F(Sessions, AreNotWaitedForByThoseWhoHaveGone) {
  int looks = 0;
  SessionStore store = Store({}, {.seats = 1, .isWanted = [&looks] { return ++looks < 3; }});
  const std::string id = store.Create(kAlice);
  const auto held = store.Open(id, {});
  EXPECT_THROW(store.Open(id, milliseconds(60'000)), SessionBusy);
  EXPECT_EQ(looks, 3);
}

TEST_F(Sessions, KeepTheirSeatWhenThePageBeforeWritesThem) {
  SessionStore store = Store();
  const std::string id = store.Create(kAlice);
  auto held = store.Open(id, {});
  held->Set("x", std::int32_t{1});
  bool got = false;
  std::thread waiter = WaitFor(store, id, got);
  held.reset();
  waiter.join();
  EXPECT_TRUE(got);
}

TEST_F(Sessions, EndAtOnceAlsoWhileAPageRuns) {
  SessionStore store = Store();
  const std::string id = store.Create(kAlice);
  auto held = store.Open(id, {});
  held->Set("x", std::int32_t{1});
  store.EndOne(id);
  EXPECT_FALSE(store.Open(id, {}));
  held.reset();
  EXPECT_FALSE(store.Open(id, {})) << "what the page wrote did not bring it back";
  EXPECT_EQ(Files(), 0u);
  store.EndOne("../" + id);
}

TEST_F(Sessions, AreRefusedOnAFullDiskAndNotHandedOutEmpty) {
  SessionStore store = Store();
  for (const rlim_t bytes : {rlim_t{0}, rlim_t{20}}) {
    const FullDisk full(bytes);
    EXPECT_THROW(store.Create(kAlice), NotKept);
  }
  EXPECT_EQ(Files(), 0u);
}

TEST_F(Sessions, StayAsTheyWereOnAFullDisk) {
  SessionStore store = Store();
  const std::string id = store.Create(kAlice);
  store.Open(id, {})->Set("x", std::int32_t{1});
  {
    const FullDisk full(20);
    store.Open(id, {})->Set("x", std::int32_t{2});
  }
  EXPECT_EQ(store.Open(id, {})->Get("x"), Value(std::int32_t{1}));
  EXPECT_EQ(Files(), 1u) << "and nothing half-written lies about";
}

// Whoever finds the seat taken asks again, as a browser would.
std::unique_ptr<FileSession> OpenAtLast(SessionStore& store, const std::string& id) {
  for (;;) {
    try {
      return store.Open(id, milliseconds(20'000));
    } catch (const SessionBusy&) {
      std::this_thread::sleep_for(milliseconds(1));
    }
  }
}

TEST_F(Sessions, LoseNoChangeOfManyProcesses) {
  SessionStore store = Store();
  const std::string id = store.Create(kAlice);
  store.Open(id, {})->Set("n", std::int32_t{0});
  constexpr int kProcesses = 4, kTimes = 25;
  for (int i = 0; i < kProcesses; ++i) {
    if (fork() == 0) {
      for (int k = 0; k < kTimes; ++k) {
        const auto session = OpenAtLast(store, id);
        session->Set("n", std::get<std::int32_t>(session->Get("n")) + 1);
      }
      _exit(0);
    }
  }
  for (int i = 0; i < kProcesses; ++i) {
    int status = 0;
    wait(&status);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(store.Open(id, {})->Get("n"), Value(std::int32_t{kProcesses * kTimes}));
}

TEST_F(Sessions, AreFreedWhenTheirProcessDies) {
  SessionStore store = Store();
  const std::string id = store.Create(kAlice);
  if (fork() == 0) {
    const auto session = store.Open(id, milliseconds(1000));
    raise(SIGKILL);
  }
  int status = 0;
  wait(&status);
  EXPECT_TRUE(store.Open(id, milliseconds(1000)));
}

TEST_F(Sessions, ThatSomebodyDamagedAreNoSessions) {
  SessionStore store = Store();
  for (const std::string& damage : {std::string(), std::string("kalvo session 1\n"), std::string("nonsense"),
                                    std::string("kalvo session 1\nKALVO\\alice\nstamp\n123\n\xFF\xFF")}) {
    const std::string id = store.Create(kAlice);
    for (const auto& path : All()) WriteFile(path, damage);
    EXPECT_FALSE(store.Open(id, {})) << damage;
  }
}

TEST_F(Sessions, EndWhenPasswordOrRightsChange) {
  SessionStore store = Store();
  const std::string id = store.Create(kAlice);
  User changed = kAlice;
  changed.administrator = false;
  EXPECT_FALSE(store.Open(id, {})->BelongsTo(changed));
  changed = kAlice;
  changed.hash = "$argon2id$other";
  EXPECT_FALSE(store.Open(id, {})->BelongsTo(changed));
}

TEST_F(Sessions, OfAUserAreFewAndTheOldestEnds) {
  SessionStore store = Store({30 * 60, 12 * 60 * 60, 2});
  const std::string others = store.Create({"KALVO\\bob", false, false, "$argon2id$bob"});
  const std::string first = store.Create(kAlice), second = store.Create(kAlice);
  Age(10);
  EXPECT_TRUE(store.Open(first, {}));  // used last, so the other one is older
  const std::string third = store.Create({"kalvo\\ALICE", true, false, "$argon2id$alice"});
  EXPECT_TRUE(store.Open(first, {}));
  EXPECT_FALSE(store.Open(second, {}));
  EXPECT_TRUE(store.Open(third, {}));
  EXPECT_TRUE(store.Open(others, {}));
}

TEST_F(Sessions, BegunAtOnceAreFewToo) {
  const SessionStore before = Store();
  std::vector<std::thread> visitors;
  for (int i = 0; i < 8; ++i) {
    visitors.emplace_back([&] { Store({30 * 60, 12 * 60 * 60, 3}).Create(kAlice); });
  }
  for (std::thread& visitor : visitors) visitor.join();
  EXPECT_EQ(Files(), 3u);
}

TEST_F(Sessions, EndByOneCommand) {
  SessionStore store = Store();
  const std::string alice = store.Create(kAlice), again = store.Create(kAlice);
  const std::string bob = store.Create({"KALVO\\bob", false, false, "$argon2id$bob"});
  EXPECT_EQ(SessionStore::End(folder_.Path() / "sessions", "kalvo\\alice"), 2);
  EXPECT_FALSE(store.Open(alice, {}));
  EXPECT_FALSE(store.Open(again, {}));
  EXPECT_TRUE(store.Open(bob, {}));
  EXPECT_EQ(SessionStore::End(folder_.Path() / "sessions", ""), 1);
  EXPECT_FALSE(store.Open(bob, {}));
  EXPECT_THROW(SessionStore::End(folder_.Path() / "nowhere", ""), host::SettingError);
}

TEST_F(Sessions, ThatWereEndedDoNotComeBackWhenTheirPageEnds) {
  SessionStore store = Store();
  const std::string id = store.Create(kAlice);
  {
    const auto running = store.Open(id, {});
    running->Set("Visits", std::int32_t{1});
    EXPECT_EQ(SessionStore::End(folder_.Path() / "sessions", ""), 1);
  }
  EXPECT_FALSE(store.Open(id, {}));
  EXPECT_EQ(Files(), 0u);
}

TEST_F(Sessions, LieInAFolderThatNobodyElseEnters) {
  const auto folder = folder_.Path() / "sessions";
  Store();
  struct stat state {};
  ASSERT_EQ(stat(folder.c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 07777, 0700u);
  chmod(folder.c_str(), 01777);
  try {
    Store();
    ADD_FAILURE() << "taken";
  } catch (const host::SettingError& error) {
    EXPECT_NE(std::string(error.what()).find("others may look into it"), std::string::npos) << error.what();
  }
  ASSERT_EQ(stat(folder.c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 07777, 01777u) << "somebody else's folder is left as it is";
}

}  // namespace
}  // namespace kalvo::test
