#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <iterator>
#include <thread>

#include "adapters/imap/imap_store.h"
#include "adapters/imap/imap_under_test.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/live_mailbox.h"
#include "support/error_of.h"
#include "support/patience.h"

namespace kalvo::test {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;
using Texts = std::vector<std::string>;

inline Texts FieldsOf(Listing& listing, std::string_view field) {
  Texts texts;
  listing.MoveFirst();
  for (std::int32_t i = 0; i < listing.Count(); ++i, listing.MoveNext()) texts.push_back(ToText(listing.Field(field)));
  return texts;
}

class ImapStoreTest : public ::testing::Test {
 protected:
  ImapStoreTest() : server_(FixtureUsers()) {}

  std::shared_ptr<imap::ImapStore> Store(std::string_view more = "&silence=1&time-limit=5") {
    return std::make_shared<imap::ImapStore>(imap::ReadSettings(StoreAddress(server_, more)));
  }

  static void OpenInbox(LiveContainer& live) { live.GotoContainer("EX01", "alice", "Inbox", 0, live::kByPath); }

  void Fill(int messages) {
    PlainImap imap(server_.Port(), "alice");
    for (int i = 0; i < messages; ++i) imap.Append("INBOX", Message(i), 915148800 + i * 60);
  }

  // Of every kind of date, with equal dates and sizes among them.
  static std::string Message(int number) {
    char date[80];
    std::snprintf(date, sizeof date, "Date: Fri, %02d Jan 1999 %02d:00:00 %+05d\n", 1 + number * 7 % 28,
                  number * 5 % 24, number % 3 * 100);
    std::string text = number % 11 == 3 ? "" : number % 13 == 5 ? "Date: the day after tomorrow\n" : date;
    text += "From: Sender " + std::to_string(number % 9) +
            " <s@kalvo.example>\nSubject: " + (number % 4 == 0 ? "Re: " : "") + "Topic " + std::to_string(number % 17) +
            "\n\n";
    return text.append(static_cast<std::size_t>(number % 6 * 10), 'x') + "\n";
  }

  DovecotServer server_;
};

}  // namespace kalvo::test
