#pragma once

#include <cstdint>
#include <filesystem>

#include "host/audit/record.h"

namespace kalvo::audit {

// The audit log of a server: the lines in the files of one private folder, which all its processes append to. Each
// line is on the disk when `Append` returns, and carries the hash of the line before, over the files' ends too.
//
// A line that a killed process or a full disk left unfinished stays where it is; the next append notes it in a line of
// its own (`LineTorn`) and chains to the last whole line.
class Journal {
 public:
  static constexpr std::int64_t kLargestFile = 16 * 1024 * 1024;

  // Makes the folder, mode 0700; one that is there has to be as private. A file that would grow beyond `largestFile`
  // bytes is put aside and a new one begun. Fails with SettingError.
  explicit Journal(std::filesystem::path folder, std::int64_t largestFile = kLargestFile);

  const std::filesystem::path& Folder() const { return folder_; }

  // Writes a line and answers it as it stands. Fails with AuditError; the log is then as it was.
  Record Append(Event event, const Visitor& visitor, const Details& details) const;

 private:
  std::filesystem::path folder_;
  std::int64_t largestFile_;
};

}  // namespace kalvo::audit
