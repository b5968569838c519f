#include "host/audit/trail.h"

#include <gtest/gtest.h>

#include "host/audit/log_files.h"
#include "host/audit/reading.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace audit;

class Trails : public testing::Test {
 protected:
  TemporaryFolder folder_;
  std::vector<std::string> told_;
  Trail trail_{folder_.Path(), [this](std::string_view line) { told_.emplace_back(line); }};
  const Visitor alice_{"KALVO\\alice", "127.0.0.1"}, stranger_{"", "127.0.0.9"};

  std::size_t Lines() const { return Newest(folder_.Path(), {}, 1000).size(); }
};

TEST_F(Trails, TheServersLogHasTheHashOfEveryLine) {
  EXPECT_EQ(trail_.Write(Event::SignedIn, alice_, {}), 1);
  const auto records = Newest(folder_.Path(), {}, 1);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(told_, (std::vector<std::string>{"audit 1 signed-in " + records[0].hash}));
}

TEST_F(Trails, WhatCannotBeWrittenFails) {
  std::filesystem::create_directory(CurrentFile(folder_.Path()));
  EXPECT_THROW(trail_.Write(Event::DeleteIntended, alice_, {}), AuditError);
  EXPECT_TRUE(told_.empty());
  trail_.Note(Event::SignedOut, alice_, {});
  ASSERT_EQ(told_.size(), 1u);
  EXPECT_NE(told_[0].find("not in the audit log: signed-out: "), std::string::npos) << told_[0];
}

TEST_F(Trails, WhatAStrangerTriesGoesToTheServersLogAlone) {
  trail_.Refused(Event::ValueRefused, stranger_, {{"name", "Sort"}, {"value", std::string(300, 'x')}});
  EXPECT_EQ(Lines(), 0u);
  EXPECT_EQ(told_, (std::vector<std::string>{"security: value-refused from 127.0.0.9 name=\"Sort\" value=\"" +
                                             std::string(200, 'x') + "...\""}));
}

TEST_F(Trails, NobodyBringsAboutManyLines) {
  for (int i = 0; i < 500; ++i) {
    trail_.Refused(Event::ValueRefused, alice_, {{"name", "Sort"}});
    trail_.Refused(Event::ValueRefused, stranger_, {{"name", "Sort"}});
  }
  // The clock may have gone on to the next second or two.
  EXPECT_GE(Lines(), 1u);
  EXPECT_LE(Lines(), 10u);
  EXPECT_LE(told_.size(), 20u);
}

TEST_F(Trails, StrangersOfManyAddressesAreLimitedTogether) {
  for (int i = 0; i < 2000; ++i) {
    trail_.Refused(Event::ValueRefused, {"", "10.0." + std::to_string(i / 250) + "." + std::to_string(i % 250)}, {});
  }
  EXPECT_GE(told_.size(), 1u);
  EXPECT_LE(told_.size(), 100u);
}

}  // namespace
}  // namespace kalvo::test
