#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/audit/record.h"

namespace kalvo::audit {

// The lines of one file, in order, whatever they hold; never more than the longest line is kept in memory.
class LineReader {
 public:
  explicit LineReader(const std::filesystem::path& file);

  struct Line {
    std::string text;    // without its end; of a longer one than a line may be its beginning
    bool ended = false;  // false for a last line that has no end
  };
  std::optional<Line> Next();

 private:
  std::ifstream in_;
};

// Which lines are asked for; what is empty asks for nothing. Times compare as text: "2026-11" is before all of that
// November.
struct Filter {
  std::optional<Event> event;
  std::string user;  // without regard to case; "alice" means a user of any domain
  std::string since, until;

  bool Takes(const Record& record) const;
};

// The newest lines that a filter takes, the newest first: at most `count`, after `skipped` newer ones. What is not a
// line of the log is passed over; `Verify` tells of it. Looks into the newest `mostFiles` files only.
std::vector<Record> Newest(const std::filesystem::path& folder, const Filter& filter, std::size_t count,
                           std::size_t skipped = 0, std::size_t mostFiles = SIZE_MAX);

}  // namespace kalvo::audit
