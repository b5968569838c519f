#include "host/web/login/session_store.h"

#include <gtest/gtest.h>

#include "web/login/session_fixture.h"

namespace kalvo::test {
namespace {

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

TEST_F(Sessions, AreRefusedOnAFullDiskAndNotHandedOutEmpty) {
  SessionStore store = Store();
  for (const rlim_t bytes : {rlim_t{0}, rlim_t{20}}) {
    const FullDisk full(bytes);
    EXPECT_THROW(store.Create(kAlice), NotKept);
  }
  EXPECT_EQ(Files(), 0u);
}

TEST_F(Sessions, ThatCannotBeKeptAreLogged) {
  SessionStore store = Store();
  const std::string id = store.Create(kAlice);
  std::filesystem::create_directory(All()[0].string() + ".new");
  store.Open(id, {})->Set("x", std::int32_t{1});
  EXPECT_NE(ReadFile(folder_.Path() / "log").find("a session was not kept: File exists"), std::string::npos)
      << ReadFile(folder_.Path() / "log");
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
