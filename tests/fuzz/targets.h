#pragma once

#include <span>
#include <stdexcept>
#include <string_view>

namespace kalvo::test {

// What a parser of outside text has to hold for every input. A target takes any bytes; it throws `Broken`, or is
// stopped by a sanitizer, when the parser breaks its word.
struct Target {
  std::string_view name;  // also the folder of its corpus below tests/fuzz/corpus/
  void (*run)(std::string_view bytes);
};

std::span<const Target> Targets();

class Broken : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

inline void Require(bool holds, const char* what) {
  if (!holds) throw Broken(what);
}

void PageParser(std::string_view bytes);
void QueryAndForm(std::string_view bytes);
void Edge(std::string_view bytes);
void SqlTokens(std::string_view bytes);
void Utf8(std::string_view bytes);
void ImapGuard(std::string_view bytes);
void MimeMessage(std::string_view bytes);

}  // namespace kalvo::test
