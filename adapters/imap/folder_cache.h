#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "adapters/imap/imap_connection.h"
#include "adapters/imap/known_texts.h"

namespace kalvo::imap {

// What is known of a folder's messages. What a UID stands for never changes, so all of it holds until the server
// renumbers the folder; the list of messages holds as long as the folder's state.
struct KnownFolder {
  FolderState state;
  std::shared_ptr<const std::vector<Summary>> messages;  // the last received first
  std::unordered_map<std::uint32_t, Fetched> rows;       // those that were shown
  KnownTexts texts;                                      // of orders by text

  std::int64_t TotalSize() const;
};

// The folders looked at last, kept from page to page.
class FolderCache {
 public:
  // What is known of the folder that stands open on the connection in this state, brought up to date: only what is
  // new is fetched.
  std::shared_ptr<KnownFolder> Update(const std::string& place, const FolderState& state, Connection& connection);

  // What is known where it is up to date; else null.
  std::shared_ptr<KnownFolder> Find(const std::string& place, const FolderState& state);

  // After an update that failed over what may be a damaged message: the next one goes on behind what it has learned,
  // and asks for less at once, until it has found the message, whose size it then does not ask for. False where that is
  // of no use.
  bool Narrow(const std::string& place);

 private:
  struct Entry {
    std::string place;
    std::shared_ptr<KnownFolder> folder;
  };

  // A folder that is being read for the first time, or on.
  struct Learning {
    std::uint32_t uidValidity = 0;
    std::vector<Summary> summaries;
    std::size_t atOnce;
    std::vector<std::uint32_t> asked;  // what the server is telling
    Connection::Sizes sizes = Connection::Sizes::Yes;
    int damaged = 0;

    Learning();
    void Ask(Connection& connection, const std::vector<std::uint32_t>& uids);
  };

  std::shared_ptr<KnownFolder> Use(const std::string& place);
  void Trim();

  std::list<Entry> entries_;  // the one used last first
  std::map<std::string, Learning> learning_;
};

}  // namespace kalvo::imap
