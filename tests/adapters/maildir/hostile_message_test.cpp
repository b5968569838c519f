// Messages that somebody made to stop the service: each is listed and opened within bounds of memory and work, and
// says of itself what can be read.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "adapters/mail/directory.h"
#include "adapters/mail/mail_store.h"
#include "adapters/maildir/folder.h"
#include "adapters/maildir/maildir_fixture.h"
#include "adapters/maildir/maildir_store.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/live_mailbox.h"
#include "support/temporary_folder.h"

namespace kalvo::test {

namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kReceived = 900'000'000;
constexpr rlim_t kMostProcessorSeconds = 8;
constexpr rlim_t kMostMemory = rlim_t{400} << 20;

std::string Many(std::string_view text, std::size_t times) {
  std::string all;
  all.reserve(text.size() * times);
  for (std::size_t i = 0; i < times; ++i) all += text;
  return all;
}

std::string Numbered(std::size_t count, const std::function<std::string(std::size_t)>& piece) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) all += piece(i);
  return all;
}

std::string NestedMultiparts(std::size_t count) {
  return Numbered(count, [](std::size_t i) {
    const std::string name = "b" + std::to_string(i);
    return "Content-Type: multipart/mixed; boundary=" + name + "\n\n--" + name + "\n";
  });
}

class HostileMessage : public ::testing::Test {
 protected:
  void SetUp() override {
    WriteFile(folder_.Path() / "mailboxes.txt",
              "[server EX01]\n[mailbox Ken]\nserver = EX01\naccount = K\\k\naddress = k@k\nlocation = ken\n");
    MakeMaildir(tree_);
    Deliver(tree_, "other.host:2,S", "From: other@kalvo.example\nSubject: Other\n\nx\n", kReceived - 1);
  }

  std::shared_ptr<LiveContainer> Inbox() {
    auto live = maildir::MaildirStore(folder_.Path().string()).Open();
    live->GotoContainer("EX01", "Ken", "Inbox", 0, live::kByPath);
    return live;
  }

  // Lists the folder and opens the newest message, and answers what is seen: "subject | sender | attachments, rows".
  std::string Look() {
    const auto live = Inbox();
    const auto messages = live->Messages();
    const std::string rows = std::to_string(messages->Count());
    live->GotoMsgAttachment("EX01", "Ken", ToText(messages->Field("ExchangeId")), 0);
    return ToText(messages->Field("Name")) + " | " + ToText(messages->Field("Sender")) + " | " +
           std::to_string(live->Attachments()->Count()) + ", " + rows;
  }

  // The same in a process that may take only so much processor time and memory. The text is at most a page long.
  std::string LookWithinBounds() {
    int answer[2];
    if (pipe(answer) != 0) return "no pipe";
    const pid_t process = fork();
    if (process == 0) {
      const rlimit time{kMostProcessorSeconds, kMostProcessorSeconds};
      setrlimit(RLIMIT_CPU, &time);
#ifndef __SANITIZE_ADDRESS__
      const rlimit memory{kMostMemory, kMostMemory};
      setrlimit(RLIMIT_AS, &memory);
#endif
      const std::string seen = Look();
      _exit(write(answer[1], seen.data(), seen.size()) == static_cast<ssize_t>(seen.size()) ? 0 : 1);
    }
    close(answer[1]);
    std::string seen;
    char bytes[4096];
    for (ssize_t got; (got = read(answer[0], bytes, sizeof bytes)) > 0;)
      seen.append(bytes, static_cast<std::size_t>(got));
    close(answer[0]);
    int status = 0;
    waitpid(process, &status, 0);
    return WIFSIGNALED(status) ? "died of signal " + std::to_string(WTERMSIG(status)) : seen;
  }

  TemporaryFolder folder_{"/dev/shm"};
  fs::path tree_ = folder_.Path() / "ken";
};

TEST_F(HostileMessage, IsListedAndOpenedWithinBounds) {
  const std::string long500(500, 'x');
  const struct {
    const char* why;
    std::string text;
    std::string seen;
  } cases[] = {
      {"60 000 groups in From", "From: " + Many("a:", 60'000) + "\nSubject: s\n\nx",
       "s | " + Many("a:", 250) + "\u2026 | 0, 2"},
      {"groups with addresses", "From: " + Many("a:b@c,", 50'000) + "\nSubject: s\n\nx",
       "s | " + Many("a:b@c,", 83) + "a:\u2026 | 0, 2"},
      {"comments in comments", "From: " + Many("(", 60'000) + "\nSubject: s\n\nx",
       "s | " + Many("(", 500) + "\u2026 | 0, 2"},
      {"angles in angles", "From: " + Many("<", 60'000) + "\nSubject: s\n\nx",
       "s | " + Many("<", 500) + "\u2026 | 0, 2"},
      {"the most nesting that is read", "From: " + Many("a:", 100) + "\nSubject: s\n\nx", "s | a | 0, 2"},
      {"groups in all the others",
       "To: " + Many("a:", 5'000) + "\nCc: " + Many("a:", 5'000) + "\nBcc: " + Many("a:", 5'000) +
           "\nReply-To: " + Many("a:", 5'000) + "\nSender: " + Many("a:", 5'000) + "\nSubject: s\nFrom: f@x\n\nx",
       "s | f@x | 0, 2"},
      {"a To that is longer than all that is read of a field",
       "Subject: s\nFrom: f@x\nTo: " + Many("a:", 60'000) + "\n\nx", "s | f@x | 0, 2"},
      {"groups in a message inside",
       "Subject: s\nFrom: f@x\nContent-Type: message/rfc822\n\nFrom: " + Many("a:", 60'000) + "\n\nx",
       "s | f@x | 1, 2"},
      {"four million header lines", "Subject: s\nFrom: f@x\n" + Many("aaaaa:b\n", 4'000'000), "s | f@x | 0, 2"},
      {"a million header lines of a part",
       "Subject: s\nFrom: f@x\nContent-Type: multipart/mixed; boundary=b\n\n--b\n" + Many("aa: b\n", 1'000'000) +
           "\n--b--\n",
       "s | f@x | 0, 2"},
      {"a subject after 100 000 lines", Many("a: b\n", 100'000) + "Subject: s\n\nx", "s |  | 0, 2"},
      {"a subject of 100 000 lines", "Subject: s" + Many("\n x", 100'000) + "\n\nx",
       "s" + Many(" x", 249) + " \u2026 |  | 0, 2"},
      {"200 000 attachments",
       "Subject: s\nFrom: f@x\nContent-Type: multipart/mixed; boundary=b\n\n" +
           Many("--b\nContent-Type: application/pdf\n\nx\n", 200'000) + "--b--\n",
       "s | f@x | 10000, 2"},
      {"100 000 nested multiparts", "Subject: s\nFrom: f@x\n" + NestedMultiparts(100'000), "s | f@x | 0, 2"},
      {"50 000 nested messages", "Subject: s\nFrom: f@x\n" + Many("Content-Type: message/rfc822\n\n", 50'000),
       "s | f@x | 1, 2"},
      {"lines that all look like boundaries",
       "Subject: s\nFrom: f@x\n" + NestedMultiparts(50) + Many("--b\n", 5'000'000), "s | f@x | 0, 2"},
      {"500 000 encoded words", "From: f@x\nSubject: " + Many("=?utf-8?Q?x?= ", 500'000) + "\n\nx",
       long500 + "\u2026 | f@x | 0, 2"},
      {"a subject of 60 MB", "From: f@x\nSubject: " + std::string(60'000'000, 'x') + "\n\nx",
       long500 + "\u2026 | f@x | 0, 2"},
      {"100 000 pieces of a file name",
       "From: f@x\nSubject: s\nContent-Disposition: attachment; " +
           Numbered(100'000, [](std::size_t i) { return "filename*" + std::to_string(i) + "=x; "; }) + "\n\nx",
       "s | f@x | 1, 2"},
      {"1 000 parts with heads as large as may be",
       "From: f@x\nSubject: s\nContent-Type: multipart/mixed; boundary=b\n\n" +
           Many("--b\nContent-Type: text/plain; " + Many("a*0*=%41; ", 6'000) + "\n\nx\n", 1000) + "--b--\n",
       "s | f@x | 0, 2"},
      {"quotes", "Subject: s\nFrom: " + Many("\"", 2'000'000) + "\n\nx", "s | " + Many("\"", 500) + "\u2026 | 0, 2"},
      {"dots", "Subject: s\nFrom: " + Many(".", 2'000'000) + "\n\nx", "s | " + Many(".", 500) + "\u2026 | 0, 2"},
      {"a year that no calendar has", "Subject: s\nFrom: f@x\nDate: Mon, 1 Jan 999999999999 00:00:00 +0000\n\nx",
       "s | f@x | 0, 2"},
      {"30 MB of zeros", "Subject: s\nFrom: f@x\n\n" + std::string(30'000'000, '\0'), "s | f@x | 0, 2"},
      {"30 MB of zeros and nothing else", std::string(30'000'000, '\0'), " |  | 0, 2"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    Deliver(tree_, "hostile.host:2,S", c.text, kReceived);
    EXPECT_EQ(LookWithinBounds(), c.seen);
    fs::remove_all(folder_.Path() / ".kalvo" / "index");
  }
}

TEST_F(HostileMessage, AFileFarLargerThanTheDiskIsNotReadToItsEnd) {
  Deliver(tree_, "sparse.host:2,S", "Subject: s\nFrom: f@x\n\n", kReceived);
  fs::resize_file(tree_ / "cur" / "sparse.host:2,S", std::uintmax_t{200} << 30);
  fs::last_write_time(tree_ / "cur" / "sparse.host:2,S", fs::file_time_type::clock::now());
  EXPECT_EQ(LookWithinBounds(), "s | f@x | 1, 2");
}

TEST_F(HostileMessage, AListingLooksAtTheFirstTwoMebibytes) {
  const std::string head = "Subject: s\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\n";
  const std::string attachment = "\n--b\nContent-Type: application/pdf\n\nx\n--b--\n";
  for (const auto& [length, seen] : {std::pair{1 << 20, "1"}, {3 << 20, "0"}}) {
    Deliver(tree_, "large.host:2,S", head + std::string(static_cast<std::size_t>(length), 'x') + attachment, kReceived);
    fs::remove_all(folder_.Path() / ".kalvo" / "index");
    const auto live = Inbox();
    const auto messages = live->Messages();
    EXPECT_EQ(ToText(messages->Field("HasAttachment")), seen);
    live->GotoMsgAttachment("EX01", "Ken", ToText(messages->Field("ExchangeId")), 0);
    EXPECT_EQ(live->Attachments()->Count(), 1);
  }
}

TEST_F(HostileMessage, SizesThatNamesTellDoNotRunOver) {
  for (const char* number : {"1", "2", "3"}) {
    Deliver(tree_, std::string(number) + ".host,S=9223372036854775807:2,S", "Subject: s\n\nx\n", kReceived);
  }
  const auto sizes = [&] {
    const auto live = Inbox();
    const std::string messages = ToText(live->Messages()->Total("Size"));
    live->GotoContainer("EX01", "Ken", "", 0, live::kByPath);
    return messages + " " + ToText(live->Folders()->Total("FolderSize"));
  };
  EXPECT_EQ(sizes(), "86 86") << "what the files are, not what their names say";
  fs::remove_all(folder_.Path() / ".kalvo");
  for (int i = 0; i < 20; ++i) {
    Deliver(tree_, "t" + std::to_string(i) + ".host,S=1099511627776:2,S", "Subject: s\n\nx\n", kReceived);
  }
  EXPECT_EQ(sizes(), "21990232555606 21990232555606") << "twenty times the largest that is believed";
}

TEST_F(HostileMessage, OneThatCannotBeReadIsARowThatSaysSo) {
  Deliver(tree_, "closed.host:2,S", "Subject: Closed\n\nx\n", kReceived);
  fs::permissions(tree_ / "cur" / "closed.host:2,S", fs::perms::none);
  fs::permissions(folder_.Path(), fs::perms::all);
  for (const auto& entry : fs::recursive_directory_iterator(folder_.Path())) {
    if (entry.is_directory()) fs::permissions(entry.path(), fs::perms::all);
  }
  const auto live = Inbox();  // opened before, so that the folder of our own belongs to us
  const bool isRoot = geteuid() == 0;
  if (isRoot) {
    fs::remove_all(folder_.Path() / ".kalvo");
    ASSERT_EQ(seteuid(65534), 0);
  }
  const std::string seen = Look();
  const auto again = Inbox()->Messages();
  if (isRoot) {
    ASSERT_EQ(seteuid(0), 0);
  }
  EXPECT_EQ(seen, "(this message cannot be read) |  | 0, 2");
  EXPECT_EQ(again->Count(), 2);
  fs::permissions(tree_ / "cur" / "closed.host:2,S", fs::perms::owner_all);
  EXPECT_EQ(Look(), "Closed |  | 0, 2") << "it is tried again";
}

TEST_F(HostileMessage, AListingThatIsKilledGoesOnWhereItWas) {
  constexpr int kMessages = 1700;
  for (int i = 0; i < kMessages; ++i)
    Deliver(tree_, "m" + std::to_string(i) + ".host:2,S", "Subject: s\n\nx\n", kReceived);
  // A process whose files may grow only so far is killed in the middle.
  const pid_t process = fork();
  if (process == 0) {
    const rlimit size{60'000, 60'000};  // bytes of a file: the index of the first 500 fits, a larger one is its end
    setrlimit(RLIMIT_FSIZE, &size);
    Inbox()->Messages();
    _exit(0);
  }
  int status = 0;
  waitpid(process, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status)) << "it came to its end";
  maildir::MaildirStore store(folder_.Path().string());
  const auto live = store.Open();
  live->GotoContainer("EX01", "Ken", "Inbox", 0, live::kByPath);
  EXPECT_EQ(live->MessageCount(), kMessages + 1);
  EXPECT_GT(store.Done().messagesParsed, 0);
  EXPECT_LE(store.Done().messagesParsed, kMessages + 1 - 500);
}

}  // namespace

}  // namespace kalvo::test
