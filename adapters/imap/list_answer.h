#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "adapters/imap/imap_connection.h"

namespace kalvo::imap {

// Reads the lines that answer a listing of folders with their states. The parser of the mail library keeps only the
// last state of an answer. Literals stand in a line as they came: "{3}", a line end, and three bytes.
class ListAnswer {
 public:
  // Takes one untagged line; what is none of ours counts for nothing.
  void Take(std::string_view line);

  // The folders in the order of their lines.
  std::vector<Folder>& Folders() { return folders_; }

 private:
  void TakeFolder(std::string_view rest);
  void TakeState(std::string_view rest);

  std::vector<Folder> folders_;
};

// The size of the literal that a line ends with and that goes on it; nothing for a line that is whole.
std::optional<std::size_t> LiteralAtEnd(std::string_view line);

}  // namespace kalvo::imap
