#pragma once

#include <string>
#include <vector>

namespace kalvo::mail {
class Directory;
}

namespace kalvo::imap {

struct Settings;

// One thing that was looked at, as a sentence; where it is not as it should be, with what would be right.
struct Finding {
  bool isGood;
  std::string text;
};

// Logs in at each server of the directory as one of its mailboxes and as the reader of public folders, and looks
// whether all is there that the product uses. Changes nothing.
std::vector<Finding> CheckMail(const Settings& settings, const mail::Directory& directory);

}  // namespace kalvo::imap
