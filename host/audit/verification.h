#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace kalvo::audit {

// What a look at the whole log found.
struct Verification {
  bool whole = true;                // every line follows from the one before
  std::vector<std::string> broken;  // "audit.jsonl:17: ...": why it is not whole
  std::vector<std::string>
      noted;  // what is worth knowing but is not a break: unfinished lines, intents without outcome
  std::int64_t lines = 0;
  std::int64_t lastNumber = 0;
  std::string lastHash;
  bool containsHash = false;  // whether one of the lines has the hash that was asked for
};

// Reads every file of a log in order and checks the chain. Each line's hash shows that the line is as it was written,
// and the hash of the line before that none is missing; that none is missing at the end shows only a hash that was
// kept elsewhere: the server's log has them.
Verification Verify(const std::filesystem::path& folder, std::string_view hash = {});

}  // namespace kalvo::audit
