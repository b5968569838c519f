// Who waits for a session that a page holds, and for how long.
#include <gtest/gtest.h>

#include "web/login/session_fixture.h"

namespace kalvo::test {
namespace {

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

}  // namespace
}  // namespace kalvo::test
