// An IMAP server that fails in the middle of a listing: the page says so in time, and the next one works.
#include <gtest/gtest.h>

#include <chrono>
#include <random>

#include "golden/live/mail_relay.h"
#include "golden/live/sample_mail_server.h"
#include "source_folder.h"

namespace kalvo::test {
namespace {

namespace fs = std::filesystem;

using Clock = std::chrono::steady_clock;

const fs::path kPages = fs::path(KALVO_SOURCE_DIR) / "tests/golden/live";
constexpr std::string_view kRow = "BODY[HEADER.FIELDS (";  // is said once for each row that is shown
constexpr int kRowsBefore = 10;

// The one server's silence is what a stopped server costs; a page may not take much more.
constexpr std::string_view kLimits = "&silence=2&time-limit=6";
constexpr auto kInTime = std::chrono::seconds(20);

class ImapFailures : public testing::Test {
 protected:
  static void SetUpTestSuite() { mail_ = new SampleMailServer; }
  static void TearDownTestSuite() { delete mail_; }

  std::string Page() {
    return RunProgram({kPages, "mailbox.asp", mail_->Address(kLimits, relay_.Port()),
                       "Server=SEA-EX01&Mailbox=alice%40kalvo.example&Container=Inbox"});
  }

  // The page during which the step is done. It says what went wrong, and soon.
  std::string PageDuring(std::function<void()> step) {
    relay_.At(kRow, kRowsBefore, std::move(step));
    const auto begin = Clock::now();
    const std::string html = Page();
    EXPECT_LT(Clock::now() - begin, kInTime);
    EXPECT_TRUE(relay_.Happened());
    EXPECT_EQ(Count(html, "Error Generating Table"), 1) << html;
    EXPECT_TRUE(Has(html, "Description: The mail server 127.0.0.1:" + std::to_string(relay_.Port()))) << html;
    return html;
  }

  static int Count(const std::string& html, std::string_view text) {
    int count = 0;
    for (std::size_t at = 0; (at = html.find(text, at)) != std::string::npos; at += text.size()) ++count;
    return count;
  }

  static bool Has(const std::string& html, std::string_view text) { return html.find(text) != std::string::npos; }

  static inline SampleMailServer* mail_ = nullptr;
  MailRelay relay_{mail_->Server().Port()};
  const std::string good_ = Page();
};

TEST_F(ImapFailures, TheRelayChangesNothing) {
  EXPECT_TRUE(Has(good_, "Number of Entries:")) << good_;
  EXPECT_FALSE(Has(good_, "Error")) << good_;
  EXPECT_EQ(Page(), good_);
}

TEST_F(ImapFailures, AServerKilledInAListingIsTold) {
  const std::string html = PageDuring([] { mail_->Server().Kill(); });
  EXPECT_TRUE(Has(html, "closed the connection")) << html;
  mail_->Server().Start();
  EXPECT_EQ(Page(), good_);
}

TEST_F(ImapFailures, AServerStoppedInAListingIsTold) {
  const std::string html = PageDuring([] { mail_->Server().Pause(); });
  mail_->Server().Resume();
  EXPECT_TRUE(Has(html, "did not answer in time")) << html;
  EXPECT_EQ(Page(), good_);
}

std::string Garbage() {
  std::mt19937 random(1);
  std::string bytes(64 << 10, ' ');
  for (char& byte : bytes) byte = static_cast<char>(random());
  return bytes;
}

TEST_F(ImapFailures, AServerThatTalksNonsenseInAListingIsTold) {
  const std::string html = PageDuring([&] { relay_.SayInstead(Garbage()); });
  relay_.SayInstead("");
  EXPECT_TRUE(Has(html, "broke a line inside a quoted string")) << html;
  EXPECT_EQ(Page(), good_);
}

}  // namespace
}  // namespace kalvo::test
