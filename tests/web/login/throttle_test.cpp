#include "host/web/login/throttle.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace kalvo::web::login {
namespace {

class Attempts : public testing::Test {
 protected:
  // How many of so many attempts in a row are heard.
  int Heard(int attempts, const std::string& account, const std::string& address) {
    int heard = 0;
    for (int i = 0; i < attempts; ++i) heard += throttle_.Begin(account, address) == 0;
    return heard;
  }

  test::TemporaryFolder folder_;
  Throttle throttle_{folder_.Path() / "attempts"};
};

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

TEST_F(Attempts, AreCountedForAllProcesses) {
  EXPECT_EQ(Heard(4, "KALVO\\alice", "10.0.0.1"), 4);
  Throttle another(folder_.Path() / "attempts");
  EXPECT_GT(another.Begin("KALVO\\alice", "10.0.0.1"), 0);
}

}  // namespace
}  // namespace kalvo::web::login
