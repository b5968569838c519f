// Whose mail a sample has: the pages of these tests stand on that of its two users, made without that of the others.
#include "database/sample_mail/sample_mail.h"

#include <gtest/gtest.h>

#include <map>

#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

namespace fs = std::filesystem;

// Every file of the store's trees, with its time and its text.
std::map<std::string, std::pair<fs::file_time_type, std::string>> FilesOf(const fs::path& store) {
  std::map<std::string, std::pair<fs::file_time_type, std::string>> files;
  for (const auto& entry : fs::recursive_directory_iterator(store)) {
    if (!entry.is_regular_file() || entry.path().string().find("/SEA-") == std::string::npos) continue;
    files[entry.path().lexically_relative(store).string()] = {entry.last_write_time(), ReadFile(entry.path())};
  }
  return files;
}

TEST(SampleMail, OfTheUsersIsTheSameWithThatOfOthersOrWithout) {
  sample::SilentProgress quiet;
  sample::Organization organization = sample::MakeOrganization(sample::SampleSize::Small, 1, quiet);
  organization.mailboxes.resize(3);
  TemporaryFolder folder;
  sample::MakeSampleMail(organization, folder.Path() / "all", sample::SampleMail::All, quiet);
  sample::MakeSampleMail(organization, folder.Path() / "users", sample::SampleMail::Users, quiet);
  auto all = FilesOf(folder.Path() / "all/mail");
  const auto users = FilesOf(folder.Path() / "users/mail");
  EXPECT_GT(users.size(), 200u);
  EXPECT_GT(all.size(), users.size());
  std::erase_if(all, [&](const auto& file) { return !users.contains(file.first); });
  EXPECT_TRUE(all == users);
  EXPECT_EQ(ReadFile(folder.Path() / "all/mail/mailboxes.txt"), ReadFile(folder.Path() / "users/mail/mailboxes.txt"));
  sample::MakeSampleMail(organization, folder.Path() / "none", sample::SampleMail::None, quiet);
  EXPECT_FALSE(fs::exists(folder.Path() / "none"));
}

}  // namespace
}  // namespace kalvo::test
