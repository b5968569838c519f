#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "adapters/imap/fake_mail_server.h"
#include "adapters/imap/imap_under_test.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/live_mailbox.h"
#include "support/temporary_folder.h"

namespace kalvo::test {

// A store over a server that can be told to misbehave: it has a second to say something and three to be done.
class HostileServer : public ::testing::Test {
 protected:
  HostileServer() { OpenStore(); }

  // A store that has asked the server nothing yet.
  void OpenStore() {
    store_ = std::make_shared<imap::ImapStore>(
        imap::ReadSettings(StoreAddress(folder_.Path().string(), server_.Port(), "&silence=1&time-limit=3")));
  }

  // Lists the inbox as a page does: its rows' texts, or the error's.
  std::string Page() {
    try {
      const auto live = Browse(store_);
      live->GotoContainer("EX01", "alice", "Inbox", 0, live::kByPath);
      const auto messages = live->Messages();
      messages->AddSortField("Name", 0);
      messages->Sort();
      std::string page = std::to_string(live->MessageCount());
      for (int i = 0; i < messages->Count(); ++i, messages->MoveNext()) page += ", " + ToText(messages->Field("Name"));
      return page + ", " + ToText(messages->Total("Size"));
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), codes::kFailed);
      return error.Description();
    }
  }

  const std::string good_ = "3, Subject 1, Subject 2, Subject 3, 306";
  TemporaryFolder folder_;
  FakeMailServer server_;
  std::shared_ptr<imap::ImapStore> store_;
};

// The text so many times.
inline std::string Many(std::string_view text, int times) {
  std::string all;
  all.reserve(text.size() * static_cast<std::size_t>(times));
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

// Says this, and that the command is done unless it is not.
inline FakeMailServer::Answer Say(std::string text, bool done = true) {
  return [text = std::move(text), done](Talk& talk, const std::string& tag) {
    talk.Send(text + (done ? tag + " OK done\r\n" : ""));
  };
}

}  // namespace kalvo::test
