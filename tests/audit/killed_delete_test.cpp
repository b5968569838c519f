// A delete and a restore with their lines, killed at every moment: the log stays whole, and the message is in exactly
// one place.
#include <gtest/gtest.h>

#include "adapters/mail/browser.h"
#include "adapters/mail/holding_desk.h"
#include "adapters/maildir/maildir_fixture.h"
#include "adapters/maildir/maildir_store.h"
#include "host/audit/deed.h"
#include "host/audit/log_files.h"
#include "host/audit/reading.h"
#include "host/audit/recorded_container.h"
#include "host/audit/verification.h"
#include "kalvo/platform/conversion.h"
#include "support/killed_process.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace audit;

namespace fs = std::filesystem;

const std::string kText = "From: a@kalvo.example\nSubject: kept\n\nBody.\n";
const Visitor kKen{"K\\k", "127.0.0.1"};

class KilledActs : public ::testing::Test {
 protected:
  void SetUp() override {
    WriteFile(mail_ / "mailboxes.txt",
              "[server EX01]\n[mailbox Ken]\nserver = EX01\naccount = K\\k\naddress = k@k\nlocation = ken\n");
    Renew();
    identifier_ = Identifier();
  }

  // One message in the mailbox, nothing held, an empty log.
  void Renew() {
    fs::remove_all(mail_ / "ken");
    fs::remove_all(mail_ / ".kalvo" / "held");
    fs::remove_all(log_);
    MakeMaildir(mail_ / "ken");
    Deliver(mail_ / "ken", "1.host:2,S", kText, 900'000'000);
  }

  std::shared_ptr<mail::MailStore> Store() const { return maildir::MaildirStore(mail_.string()).Store(); }

  std::string Identifier() const {
    mail::Browser live(Store());
    live.GotoContainer("EX01", "Ken", "Inbox", 0, live::kByPath);
    return ToText(live.Messages()->Field("ExchangeId"));
  }

  void Delete() const {
    Trail trail(log_, [](std::string_view) {});
    RecordedContainer(std::make_shared<mail::Browser>(Store(), kKen.user), trail, kKen, [](std::string_view) {
      return true;
    }).RemoveMessage("EX01", "Ken", "", identifier_, 0);
  }

  void Restore() const {
    Trail trail(log_, [](std::string_view) {});
    mail::HoldingDesk desk(Store());
    Recorded(trail, kRestore, kKen, {}, [&](Details&) { desk.Restore("EX01", "Ken", desk.All().at(0).message.id, 0); });
  }

  std::size_t Shown() const {
    std::size_t shown = 0;
    for (const char* list : {"cur", "new"}) {
      for (const auto& entry : fs::directory_iterator(mail_ / "ken" / list)) {
        EXPECT_EQ(ReadFile(entry.path()), kText);
        ++shown;
      }
    }
    return shown;
  }
  std::size_t Held() const { return mail::HoldingDesk(Store()).All().size(); }
  std::size_t Written(Event event) const { return Newest(log_, {event, "", "", ""}, 10).size(); }

  // What holds after a kill at any moment. `moved`: the message is where the act was to bring it.
  void Check(bool moved, Event intent, Event outcome) const {
    EXPECT_EQ(Shown() + Held(), 1u) << "in exactly one place";
    if (moved) {
      EXPECT_EQ(Written(intent), 1u) << "nothing is done unwritten";
    }
    if (Written(outcome) == 1) {
      EXPECT_TRUE(moved) << "what is written as done is done";
    }
    const Verification before = Verify(log_);
    EXPECT_TRUE(before.whole) << testing::PrintToString(before.broken);
    Journal(log_).Append(Event::ServerStarted, {}, {});
    const Verification after = Verify(log_);
    EXPECT_TRUE(after.whole) << testing::PrintToString(after.broken);
  }

  TemporaryFolder folder_{"/dev/shm"};  // every step is written through, which takes a disk its time
  fs::path mail_ = folder_.Path(), log_ = folder_.Path() / "audit";
  std::string identifier_;
};

TEST_F(KilledActs, ADeleteLeavesOneMessageAndAWholeLog) {
  bool sawIntentAlone = false, sawMoveWithoutOutcome = false;
  const int kills = KillAtEveryMoment(
      Calls::All, [this] { Renew(); }, [this] { Delete(); },
      [&] {
        Check(Held() == 1, Event::DeleteIntended, Event::Deleted);
        sawIntentAlone = sawIntentAlone || (Written(Event::DeleteIntended) == 1 && Shown() == 1);
        sawMoveWithoutOutcome = sawMoveWithoutOutcome || (Held() == 1 && Written(Event::Deleted) == 0);
      });
  EXPECT_GT(kills, 30);
  EXPECT_TRUE(sawIntentAlone) << "it was killed between the intent and the move";
  EXPECT_TRUE(sawMoveWithoutOutcome) << "and between the move and the outcome";
  EXPECT_EQ(Written(Event::Deleted), 1u) << "the last time it came to its end";
}

TEST_F(KilledActs, ARestoreLeavesOneMessageAndAWholeLog) {
  const int kills = KillAtEveryMoment(
      Calls::All,
      [this] {
        Renew();
        Delete();
      },
      [this] { Restore(); }, [this] { Check(Shown() == 1, Event::RestoreIntended, Event::Restored); });
  EXPECT_GT(kills, 30);
  EXPECT_EQ(Written(Event::Restored), 1u);
}

}  // namespace
}  // namespace kalvo::test
