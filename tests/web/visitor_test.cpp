#include "host/web/visitor.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace kalvo::test {
namespace {

using namespace web;

class Visitors : public testing::Test {
 protected:
  Visitors() { socketpair(AF_UNIX, SOCK_STREAM, 0, ends_); }
  ~Visitors() override {
    HangUp();
    close(ends_[1]);
  }

  void HangUp() {
    if (ends_[0] >= 0) close(ends_[0]);
    ends_[0] = -1;
  }

  bool IsGoneSoon() {
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (visitor_.IsThere() && std::chrono::steady_clock::now() < until) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return !visitor_.IsThere();
  }

  int ends_[2] = {-1, -1};
  Visitor visitor_;
};

TEST_F(Visitors, AreThereUntilTheyHangUp) {
  visitor_.Arrived(ends_[1]);
  EXPECT_TRUE(visitor_.IsThere());
  HangUp();
  EXPECT_TRUE(IsGoneSoon());
}

TEST_F(Visitors, WhoHungUpBeforeTheyWereServedAreGoneAtTheFirstLook) {
  HangUp();
  visitor_.Arrived(ends_[1]);
  EXPECT_FALSE(visitor_.IsThere());
}

TEST_F(Visitors, WhoHaveSaidMoreThanWasReadAreThere) {
  ASSERT_EQ(write(ends_[0], "more", 4), 4);
  visitor_.Arrived(ends_[1]);
  EXPECT_TRUE(visitor_.IsThere());
}

TEST_F(Visitors, ThatNobodyServesAreNotLookedAt) {
  EXPECT_TRUE(visitor_.IsThere()) << "whoever runs a page for nobody in particular runs it to its end";
  visitor_.Arrived(ends_[1]);
  visitor_.Served();
  HangUp();
  EXPECT_TRUE(visitor_.IsThere());
}

TEST_F(Visitors, DoNotStandForTheNext) {
  HangUp();
  visitor_.Arrived(ends_[1]);
  EXPECT_FALSE(visitor_.IsThere());
  visitor_.Served();
  int next[2];
  socketpair(AF_UNIX, SOCK_STREAM, 0, next);
  visitor_.Arrived(next[0]);
  EXPECT_TRUE(visitor_.IsThere());
  close(next[0]);
  close(next[1]);
}

}  // namespace
}  // namespace kalvo::test
