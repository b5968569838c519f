#include "host/audit/reading.h"

#include <deque>

#include "host/audit/log_files.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::audit {

LineReader::LineReader(const std::filesystem::path& file) : in_(file, std::ios::binary) {}

std::optional<LineReader::Line> LineReader::Next() {
  Line line;
  std::streambuf& bytes = *in_.rdbuf();
  for (int byte = bytes.sbumpc();; byte = bytes.sbumpc()) {
    if (byte == std::char_traits<char>::eof()) break;
    if (byte == '\n') {
      line.ended = true;
      return line;
    }
    if (line.text.size() <= 2 * kLongestLine) line.text += static_cast<char>(byte);
  }
  if (line.text.empty()) return std::nullopt;
  return line;
}

bool Filter::Takes(const Record& record) const {
  if (event && record.event != *event) return false;
  if (!since.empty() && record.time < since) return false;
  if (!until.empty() && record.time >= until) return false;
  if (user.empty() || EqualsIgnoringCase(user, record.visitor.user)) return true;
  const std::size_t domain = record.visitor.user.find('\\');
  return domain != std::string::npos && EqualsIgnoringCase(user, record.visitor.user.substr(domain + 1));
}

std::vector<Record> Newest(const std::filesystem::path& folder, const Filter& filter, std::size_t count,
                           std::size_t skipped, std::size_t mostFiles) {
  std::vector<Record> found;
  const auto files = LogFiles(folder);
  for (auto file = files.rbegin(); file != files.rend() && found.size() < count && mostFiles > 0; ++file, --mostFiles) {
    std::deque<Record> taken;  // of this file, as many as could still be asked for
    std::size_t matches = 0;
    LineReader reader(*file);
    while (auto line = reader.Next()) {
      auto record = ReadLine(line->text);
      if (!record || !filter.Takes(*record)) continue;
      ++matches;
      taken.push_back(std::move(*record));
      if (taken.size() > count + skipped) taken.pop_front();
    }
    while (!taken.empty() && found.size() < count) {
      if (skipped > 0) {
        --skipped;
      } else {
        found.push_back(std::move(taken.back()));
      }
      taken.pop_back();
    }
  }
  return found;
}

}  // namespace kalvo::audit
