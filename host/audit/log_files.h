#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/file.h"
#include "host/audit/record.h"

namespace kalvo::audit {

// The file that lines are appended to, and what it becomes when it is full: "audit-000000000001.jsonl", by the
// number of its first line.
std::filesystem::path CurrentFile(const std::filesystem::path& folder);
std::filesystem::path FullFile(const std::filesystem::path& folder, std::int64_t firstNumber);

// All files of a log that are there, the oldest first, the current one last.
std::vector<std::filesystem::path> LogFiles(const std::filesystem::path& folder);

// How a file of the log ends.
struct FileEnd {
  std::optional<Record> last;  // its last whole line
  bool lacksEnd = false;       // whether only the line end of that is missing
  std::string torn;            // what stands behind that, without the line end
  bool tornEnds = false;       // whether that has a line end
};

// Reads the end of an open file. Fails with AuditError where it cannot be read, and where its end is nothing that a
// log could end with.
FileEnd ReadEnd(const base::File& file, const std::filesystem::path& path);

}  // namespace kalvo::audit
