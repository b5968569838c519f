#include "host/audit/reading.h"

#include <gtest/gtest.h>

#include "host/audit/journal.h"
#include "host/audit/log_files.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace audit;

class Reading : public testing::Test {
 protected:
  Reading() {
    const Visitor alice{"KALVO\\alice", "127.0.0.1"}, bob{"KALVO\\bob", "127.0.0.2"};
    journal_.Append(Event::SignedIn, alice, {});
    journal_.Append(Event::SignedIn, bob, {});
    journal_.Append(Event::Deleted, alice, {});
    journal_.Append(Event::SignedOut, bob, {});
  }

  std::string Numbers(const Filter& filter, std::size_t count = 100, std::size_t skipped = 0) const {
    std::string numbers;
    for (const Record& record : Newest(folder_.Path(), filter, count, skipped)) {
      numbers += std::to_string(record.number) + " ";
    }
    return numbers;
  }

  TemporaryFolder folder_;
  Journal journal_{folder_.Path()};
};

TEST_F(Reading, TheNewestLinesComeFirst) {
  EXPECT_EQ(Numbers({}), "4 3 2 1 ");
  EXPECT_EQ(Numbers({}, 2), "4 3 ");
  EXPECT_EQ(Numbers({}, 2, 1), "3 2 ");
  EXPECT_EQ(Numbers({}, 9, 9), "");
  EXPECT_EQ(Numbers({}, 0), "");
}

TEST_F(Reading, AFilterTakesByEventUserAndTime) {
  const std::string third = Newest(folder_.Path(), {}, 1, 1)[0].time;
  const struct {
    const char* why;
    Filter filter;
    const char* numbers;
  } kCases[] = {
      {"an event", {Event::SignedIn, "", "", ""}, "2 1 "},
      {"a user", {{}, "KALVO\\alice", "", ""}, "3 1 "},
      {"a user of any domain, in any case", {{}, "ALICE", "", ""}, "3 1 "},
      {"part of a name is no name", {{}, "lice", "", ""}, ""},
      {"the past", {{}, "", "", "2000"}, ""},
      {"the future", {{}, "", "9999", ""}, ""},
      {"all there is", {{}, "", "2000", "9999"}, "4 3 2 1 "},
      {"a user's event", {Event::SignedIn, "bob", "", ""}, "2 "},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Numbers(c.filter), c.numbers);
  }
}

TEST_F(Reading, GoesBackOverSeveralFilesAndPastWhatIsNoLine) {
  std::filesystem::rename(CurrentFile(folder_.Path()), FullFile(folder_.Path(), 1));
  WriteFile(CurrentFile(folder_.Path()), "garbage\n" + std::string(3 * kLongestLine, 'x') + "\n");
  EXPECT_EQ(Numbers({}, 2, 1), "3 2 ");
  EXPECT_EQ(Newest(folder_.Path(), {}, 9, 0, 1).size(), 0u);
  EXPECT_EQ(Newest(folder_.Path(), {}, 9, 0, 2).size(), 4u);
}

}  // namespace
}  // namespace kalvo::test
