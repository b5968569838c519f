#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "adapters/live_mailbox/fixture.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/live_mailbox.h"
#include "support/error_of.h"

namespace kalvo::test {

inline constexpr std::int32_t kMailboxFolder = 1, kPublicFolder = 5, kPublicStore = 4;

inline std::string Hex(std::int32_t number) {
  char text[16];
  std::snprintf(text, sizeof text, "%X", static_cast<unsigned>(number));
  return text;
}

// The number of the error that an operation raises, in hexadecimal; "0" for none.
inline std::string Raised(const std::function<void()>& operation) {
  const Error error = ErrorOf(operation);
  EXPECT_EQ(error.Description().empty(), error.Number() == 0);
  return Hex(error.Number());
}

inline constexpr const char* kNoFolder = "E1C1002F";
inline constexpr const char* kNone = "8004010F";
inline constexpr const char* kAmbiguous = "E1C10029";

inline std::vector<std::string> Texts(Listing& listing, std::string_view field) {
  std::vector<std::string> texts;
  listing.MoveFirst();
  for (std::int32_t i = 0; i < listing.Count(); ++i, listing.MoveNext()) texts.push_back(ToText(listing.Field(field)));
  return texts;
}

using Names = std::vector<std::string>;

class LiveMailboxContract : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("TZ", "UTC", 1);
    tzset();
    store_ = MakeStoreUnderTest();
    live_ = store_->Open();
  }

  void OpenInbox() { live_->GotoContainer("EX01", "alice@kalvo.example", "Inbox", 0, kMailboxFolder); }

  // The identifier of the item of the listing whose name is `name`.
  std::string IdOf(Listing& listing, std::string_view name) {
    listing.MoveFirst();
    for (std::int32_t i = 0; i < listing.Count(); ++i, listing.MoveNext()) {
      if (ToText(listing.Field("Name")) == name) return ToText(listing.Field("ExchangeId"));
    }
    ADD_FAILURE() << "no item " << name;
    return {};
  }

  std::string InboxMessage(std::string_view subject) {
    OpenInbox();
    return IdOf(*live_->Messages(), subject);
  }

  std::unique_ptr<StoreUnderTest> store_;
  std::shared_ptr<LiveContainer> live_;
};

}  // namespace kalvo::test
