#include "database/sample/sample.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

#include "database/sample/organization.h"
#include "database/sample/sample_steps.h"
#include "database/sample/script_writer.h"
#include "kalvo/platform/error.h"
#include "support/error_of.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace sample;

Organization Made(SampleSize size, std::uint64_t seed) {
  SilentProgress progress;
  return MakeOrganization(size, seed, progress);
}

std::string Script(std::uint64_t seed) {
  std::ostringstream out;
  SilentProgress progress;
  ScriptWriter writer(out, schema::Engine::Postgresql);
  WriteSample(Made(SampleSize::Small, seed), writer, progress);
  writer.Finish();
  return out.str();
}

TEST(Sample, IsTheSameForTheSameSeed) { EXPECT_EQ(Script(7), Script(7)); }

TEST(Sample, IsAnotherForAnotherSeed) { EXPECT_NE(Script(7), Script(8)); }

// The golden pages stand on these numbers: whoever changes them sees them here first.
TEST(Sample, DrawsTheSameNumbersOnEveryMachine) {
  Random random(1, "servers");
  EXPECT_EQ(random.Next(), 16369152131218560805ULL);
  EXPECT_EQ(random.Below(1000), 194);
  EXPECT_EQ(random.SkewedThousandths(), 3106);
}

TEST(Sample, HasSizesOfARealDistribution) {
  std::vector<std::int64_t> spaces;
  for (const Mailbox& mailbox : Made(SampleSize::Medium, 1).mailboxes) spaces.push_back(mailbox.space);
  std::ranges::sort(spaces);
  const std::int64_t median = spaces[spaces.size() / 2], high = spaces[spaces.size() * 99 / 100];
  EXPECT_GT(median, 0);
  EXPECT_EQ(spaces.front(), 0) << "some mailboxes are empty";
  EXPECT_GT(high, 10 * median) << "one in a hundred is far larger than the usual";
}

TEST(Sample, GivesEverybodyANameAnAccountAndADistinguishedNameOfTheirOwn) {
  const Organization organization = Made(SampleSize::Medium, 1);
  std::set<std::string> names, accounts, distinguished;
  for (const Mailbox& mailbox : organization.mailboxes) {
    names.insert(DisplayName(mailbox));
    accounts.insert(Alias(mailbox));
    distinguished.insert(DistinguishedName(organization, mailbox));
    EXPECT_TRUE(std::ranges::all_of(Alias(mailbox), [](unsigned char c) { return c < 128; }));
  }
  EXPECT_EQ(names.size(), organization.mailboxes.size());
  EXPECT_EQ(accounts.size(), organization.mailboxes.size());
  EXPECT_EQ(distinguished.size(), organization.mailboxes.size());
}

TEST(Sample, HasServersOfEveryKind) {
  const Organization organization = Made(SampleSize::Small, 1);
  const auto count = [&](auto predicate) { return std::ranges::count_if(organization.servers, predicate); };
  EXPECT_GT(count([](const Server& server) { return server.missing; }), 0);
  EXPECT_GT(count([](const Server& server) { return !server.managed; }), 0);
  EXPECT_GT(count([](const Server& server) { return server.managed && !server.scanned; }), 0);
  EXPECT_GT(count([](const Server& server) { return server.agentVersion.starts_with("1."); }), 0);
  std::set<std::string_view> organizations, sites;
  for (const Server& server : organization.servers)
    organizations.insert(server.organization), sites.insert(server.site);
  EXPECT_GE(organizations.size(), 3u);
  EXPECT_GE(sites.size(), 8u);
}

TEST(Sample, OfLargeSizeHasAThousandServersAndAMillionMailboxes) {
  const Organization organization = Made(SampleSize::Large, 1);
  EXPECT_EQ(organization.servers.size(), 1'000u);
  EXPECT_EQ(organization.mailboxes.size(), 1'000'000u);
}

TEST(Sample, RefusesASizeThatIsNone) {
  const Error error = ErrorOf([&] { SampleSizeFromName("huge"); });
  EXPECT_EQ(error.Description(), "There is no sample of size \"huge\"; the sizes are small, medium and large.");
}

TEST(Sample, HasTheMailOfAllOfItsTwoUsersOrOfNobody) {
  EXPECT_EQ(SampleMailFromName("all"), SampleMail::All);
  EXPECT_EQ(SampleMailFromName("users"), SampleMail::Users);
  EXPECT_EQ(SampleMailFromName("none"), SampleMail::None);
  const Error error = ErrorOf([&] { SampleMailFromName("some"); });
  EXPECT_EQ(error.Description(), "There is no sample with the mail of \"some\"; it has that of all, users or none.");
}

TEST(Sample, ReplacesAnEarlierOneAndLeavesNothingElse) {
  TemporaryFolder folder;
  WriteFile(folder.Path() / "kalvo.db", "not a database");
  SilentProgress progress;
  MakeSample({folder.Path()}, progress);
  EXPECT_TRUE(ReadFile(folder.Path() / "kalvo.db").starts_with("SQLite format 3"));
  EXPECT_FALSE(exists(folder.Path() / "kalvo.db.part"));
}

TEST(Sample, SaysWhichFolderItCannotMake) {
  TemporaryFolder folder;
  WriteFile(folder.Path() / "file", "");
  SilentProgress progress;
  const Error error = ErrorOf([&] { MakeSample({folder.Path() / "file" / "below"}, progress); });
  EXPECT_NE(error.Description().find((folder.Path() / "file" / "below").string()), std::string::npos);
}

TEST(Sample, TellsItsProgress) {
  std::ostringstream out;
  {
    TextProgress progress(out);
    progress.Step("mailboxes");
    progress.Rows(1, 2);
    progress.Step("indexes");
  }
  EXPECT_EQ(out.str(), "mailboxes\rmailboxes 50%\rmailboxes     \nindexes\rindexes     \n");
}

TEST(Moments, AreWrittenAsDatesAndTimes) {
  EXPECT_EQ(MomentText({0}), "1970-01-01 00:00:00");
  EXPECT_EQ(MomentText({951782400}), "2000-02-29 00:00:00");
  EXPECT_EQ(MomentText({1791184500}), "2026-10-05 07:15:00");
}

}  // namespace
}  // namespace kalvo::test
