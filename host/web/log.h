#pragma once

#include <string>
#include <string_view>

#include "base/file.h"

namespace kalvo::web {

// The server's log, shared by the supervisor and its workers: one line an event, with the time and who wrote it.
// Each line is one write to a file that only grows, so lines of several processes do not mix.
class Log {
 public:
  // "-" is standard error. Fails with SettingError for a file that cannot be written.
  explicit Log(std::string file);
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;

  // Characters of the text that are not seen, or change how others are, are written as "\xNN" byte by byte; bytes
  // that are not text become U+FFFD.
  void Write(std::string_view text) const;

  // Opens the file again, after somebody moved it away.
  void Reopen();

  int Descriptor() const;

 private:
  std::string file_;
  base::File opened_;  // closed: standard error
};

// A text from outside as a line of the log has it: as much as fits into 200 bytes.
std::string InLog(std::string_view text);

}  // namespace kalvo::web
