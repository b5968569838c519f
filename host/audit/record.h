#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/audit/event.h"

namespace kalvo::audit {

using Details = std::vector<std::pair<std::string, std::string>>;  // names and values, in the order they are written

// Who did it, from where.
struct Visitor {
  std::string user;     // the logon name; "" for somebody who has not signed in, and for the server itself
  std::string address;  // "" where no request brought it about
};

// One line of the audit log. Its hash is over everything before it in the line, the hash of the line before among it.
struct Record {
  std::int64_t number = 0;  // from 1, one more each line
  std::string time;         // UTC: "2026-11-21T16:40:00.123Z"
  Event event = Event::ServerStarted;
  Visitor visitor;
  Details details;
  std::string previous;  // the hash of the line before; `kNoHash` before the first
  std::string hash;

  // The value of a detail; "" where there is none of that name.
  std::string_view Detail(std::string_view name) const;
};

// What a value of a line may be at most; a longer one is cut, and ends with "...".
inline constexpr std::size_t kLongestValue = 4096;
inline constexpr std::size_t kMostDetails = 16;
inline constexpr std::size_t kLongestLine = 512 * 1024;

inline constexpr std::string_view kNoHash = "0000000000000000000000000000000000000000000000000000000000000000";

// SHA-256 as 64 hexadecimal digits.
std::string HashOf(std::string_view text);

// The present moment, as `Record::time` has it.
std::string Now();

// The line of a record, with its hash, without a line end: one JSON object, in ASCII where a character could be
// mistaken. What is ill-formed in its texts becomes U+FFFD.
std::string LineOf(const Record& record);

// The record of a line that `LineOf` made. Nothing for any other text: every byte of the line counts.
std::optional<Record> ReadLine(std::string_view line);

}  // namespace kalvo::audit
