#include "host/audit/log_files.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "host/audit/audit_error.h"
#include "kalvo/platform/append.h"

namespace kalvo::audit {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrefix = "audit-", kEnding = ".jsonl";
constexpr std::size_t kDigits = 12;

bool IsFullFile(std::string_view name) {
  if (name.size() != kPrefix.size() + kDigits + kEnding.size()) return false;
  const std::string_view digits = name.substr(kPrefix.size(), kDigits);
  return name.starts_with(kPrefix) && name.ends_with(kEnding) &&
         std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

fs::path CurrentFile(const fs::path& folder) { return folder / "audit.jsonl"; }

fs::path FullFile(const fs::path& folder, std::int64_t firstNumber) {
  std::string digits = std::to_string(firstNumber);
  if (digits.size() < kDigits) digits.insert(0, kDigits - digits.size(), '0');
  return folder / Built([&](std::string& name) { Append(name, kPrefix, digits, kEnding); });
}

std::vector<fs::path> LogFiles(const fs::path& folder) {
  std::vector<fs::path> files;
  std::error_code failed;
  for (const auto& entry : fs::directory_iterator(folder, failed)) {
    if (IsFullFile(entry.path().filename().string())) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  if (fs::exists(CurrentFile(folder), failed)) files.push_back(CurrentFile(folder));
  return files;
}

FileEnd ReadEnd(const base::File& file, const fs::path& path) {
  // Room for the longest line, and for what a torn one left behind it.
  const auto size = static_cast<std::size_t>(base::StatusOf(file).st_size);
  const std::size_t from = size - std::min(size, 2 * kLongestLine);
  const auto piece = base::ReadPiece(file, size - from, from);
  if (!piece) throw AuditError(path.filename().string() + " cannot be read: " + std::strerror(errno));
  const std::string& text = *piece;

  FileEnd end;
  std::size_t lineEnd = text.rfind('\n');
  end.last = ReadLine(std::string_view(text).substr(lineEnd + 1));
  end.lacksEnd = end.last.has_value();
  if (end.lacksEnd) return end;
  while (lineEnd != std::string::npos) {
    const std::size_t before = lineEnd == 0 ? std::string::npos : text.rfind('\n', lineEnd - 1);
    const std::size_t start = before == std::string::npos ? 0 : before + 1;
    end.last = ReadLine(std::string_view(text).substr(start, lineEnd - start));
    if (end.last) break;
    lineEnd = before;
  }
  end.torn = end.last ? text.substr(lineEnd + 1) : text;
  end.tornEnds = end.torn.ends_with('\n');
  if (end.tornEnds) end.torn.pop_back();
  if (!end.last && from > 0) {
    throw AuditError(path.filename().string() +
                     " does not end with a line of the audit log; move the file away to go on");
  }
  return end;
}

}  // namespace kalvo::audit
