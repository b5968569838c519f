#include "host/web/holding_sweep.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>

#include "adapters/mail/directory.h"
#include "adapters/mail/mail_store.h"
#include "host/parts/mail_part.h"
#include "host/web/log.h"
#include "kalvo/platform/error.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace web;

namespace fs = std::filesystem;

constexpr std::int64_t kDay = 86'400;

class HoldingSweepTest : public ::testing::Test {
 protected:
  HoldingSweepTest() {
    fs::create_directories(folder_.Path() / "mail" / "ken" / "cur");
    WriteFile(folder_.Path() / "mail" / "mailboxes.txt",
              "[server EX01]\n[mailbox Ken]\nserver = EX01\naccount = K\\k\naddress = k@k\nlocation = ken\n");
    store_ = host::OpenMail("maildir:" + (folder_.Path() / "mail").string());
  }

  void Delete(std::int64_t daysAgo) {
    const std::string name = std::to_string(++number_) + ".host";
    WriteFile(folder_.Path() / "mail" / "ken" / "cur" / (name + ":2,S"), "Subject: s\n\nx\n");
    const auto names = store_->Mailboxes();
    store_->Remove({"EX01", &names->Find("EX01", "Ken")}, "INBOX", name, {"", std::time(nullptr) - daysAgo * kDay});
  }

  std::size_t Held() { return store_->Held(nullptr).size(); }
  HoldingSweep Sweep(int days = 14) { return {folder_.Path(), store_.get(), days, log_}; }
  std::string Told() { return ReadFile(folder_.Path() / "log"); }

  // As if so many seconds had gone by since somebody swept.
  void Wait(int seconds) {
    fs::last_write_time(folder_.Path() / "swept", fs::file_time_type::clock::now() - std::chrono::seconds(seconds));
  }

  TemporaryFolder folder_;
  Log log_{(folder_.Path() / "log").string()};
  std::shared_ptr<mail::MailStore> store_;
  int number_ = 0;
};

TEST_F(HoldingSweepTest, EndsTheHoldingOfWhatIsPastItsTime) {
  for (const int daysAgo : {13, 15, 400}) Delete(daysAgo);
  HoldingSweep sweep = Sweep();
  EXPECT_TRUE(sweep.IsDue());
  sweep.Run();
  EXPECT_EQ(Held(), 1u);
  EXPECT_NE(Told().find("deleted messages that were held long enough are gone: 2"), std::string::npos) << Told();
  EXPECT_FALSE(sweep.IsDue());
}

TEST_F(HoldingSweepTest, HoldsThemForAsManyDaysAsTheSettingsSay) {
  Delete(20);
  Sweep(21).Run();
  EXPECT_EQ(Held(), 1u);
  Wait(3600);
  Sweep(19).Run();
  EXPECT_EQ(Held(), 0u);
}

TEST_F(HoldingSweepTest, OfAllProcessesOneSweepsOnceAnHour) {
  Sweep().Run();
  Delete(15);
  HoldingSweep other = Sweep();
  EXPECT_FALSE(other.IsDue());
  other.Run();
  EXPECT_EQ(Held(), 1u);
  Wait(3590);
  EXPECT_FALSE(other.IsDue());
  Wait(3601);
  EXPECT_TRUE(other.IsDue());
  other.Run();
  EXPECT_EQ(Held(), 0u);
}

TEST_F(HoldingSweepTest, WithoutMailboxesIsNeverDue) {
  EXPECT_FALSE(HoldingSweep(folder_.Path(), nullptr, 14, log_).IsDue());
}

TEST_F(HoldingSweepTest, AStoreThatFailsIsToldOfAndTriedAnHourLater) {
  class Failing : public mail::MailStore {
   public:
    explicit Failing(std::shared_ptr<mail::MailStore> store) : store_(std::move(store)) {}
    std::shared_ptr<const mail::Directory> Mailboxes() override { return store_->Mailboxes(); }
    const mail::IdentifierKey& Key() override { return store_->Key(); }
    std::string FindFolder(const mail::Tree&, const mail::FolderPath&) override { return ""; }
    mail::FolderPath PathOf(const mail::Tree&, std::string_view) override { return {}; }
    std::vector<mail::FolderInfo> Folders(const mail::Tree&, std::string_view) override { return {}; }
    std::unique_ptr<mail::MessageSource> Messages(const mail::Tree&, std::string_view) override { return nullptr; }
    mail::MessageDetails Message(const mail::Tree&, std::string_view, std::string_view) override { return {}; }
    std::string Remove(const mail::Tree&, std::string_view, std::string_view, const mail::Deletion&) override {
      return "";
    }
    std::vector<mail::HeldMessage> Held(const mail::Tree*) override { return {}; }
    mail::FolderPath Restore(const mail::Tree&, std::string_view, const std::optional<mail::FolderPath>&) override {
      return {};
    }
    std::int32_t Sweep(std::int64_t) override { throw kalvo::Error(kalvo::codes::kFailed, "The mail server is away."); }

   private:
    std::shared_ptr<mail::MailStore> store_;
  } failing(store_);
  HoldingSweep sweep(folder_.Path(), &failing, 14, log_);
  sweep.Run();
  EXPECT_NE(Told().find("could not be removed: The mail server is away."), std::string::npos) << Told();
  EXPECT_FALSE(sweep.IsDue());
}

}  // namespace
}  // namespace kalvo::test
