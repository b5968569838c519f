#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kalvo::mail {

// The folder names from a root down; empty is the root.
using FolderPath = std::vector<std::string>;

// Who deletes a message, and when.
struct Deletion {
  std::string who;        // logon name; "" where nobody signs in
  std::int64_t when = 0;  // seconds since 1970, UTC
};

// A message that was deleted and is still held: what is needed to show it, and to put it back as it was.
struct HeldMessage {
  std::string id;                    // its name in the holding folder: letters and digits, never given twice
  std::string server;                // as the directory spelled it
  std::string mailbox;               // the mailbox's location in the store; "" for the public folders
  FolderPath folder;                 // where it was, as it was shown
  std::string folderKey;             // the same in the store's own words
  std::string name;                  // the message in the store's own words
  std::string flags;                 // in the store's own words
  std::string subject, sender;       // cleaned
  std::int64_t size = 0;             // bytes
  std::optional<std::int64_t> sent;  // seconds since 1970, UTC
  std::optional<std::int64_t> received;
  Deletion deletion;
};

// The record that is kept beside a held message: one line of printable ASCII, "key=value" after "key=value".
std::string WriteHeldRecord(const HeldMessage& message);

// Nothing for a text that is not a whole record.
std::optional<HeldMessage> ReadHeldRecord(std::string_view record);

// An id for a message that is to be held: 128 random bits as hexadecimal digits.
std::string NewHeldId();
bool IsHeldId(std::string_view text);

}  // namespace kalvo::mail
