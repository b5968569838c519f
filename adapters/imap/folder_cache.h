#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "adapters/imap/connection.h"

namespace kalvo::imap {

// What is known of a folder's messages. What a UID stands for never changes, so all of it holds until the server
// numbers the folder anew; the list of messages holds as long as the folder's state.
struct KnownFolder {
  FolderState state;
  std::shared_ptr<const std::vector<Summary>> messages;  // the last received first
  std::unordered_map<std::uint32_t, Fetched> rows;       // those that were shown

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

 private:
  struct Entry {
    std::string place;
    std::shared_ptr<KnownFolder> folder;
  };

  std::shared_ptr<KnownFolder> Use(const std::string& place);
  void Trim();

  std::list<Entry> entries_;  // the one used last first
};

}  // namespace kalvo::imap
