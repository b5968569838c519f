#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace kalvo::audit {

// Lets through one line a second for each key, in all processes that were forked after it was made, so that nobody who
// brings lines about fills a disk with them. Two keys may share their second; which ones do, nobody can find out.
class LineLimit {
 public:
  explicit LineLimit(int linesASecond = 1);
  ~LineLimit();
  LineLimit(const LineLimit&) = delete;
  LineLimit& operator=(const LineLimit&) = delete;

  // Nothing: the line of this key is to be left out. Else how many lines were left out since the last one.
  std::optional<std::uint32_t> Take(std::string_view key, std::int64_t second);

 private:
  struct Shared;
  Shared* shared_;
  int linesASecond_;
};

// What lines are counted by: the address, of one of the sixth generation its first 64 bits.
std::string_view NetworkOf(std::string_view address);

}  // namespace kalvo::audit
