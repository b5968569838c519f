#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/script/page/page_directive.h"
#include "host/script/page/page_result.h"

namespace kalvo::host {

// Where a line of a page's script comes from.
struct LinePlace {
  std::uint32_t file = 0;  // index into PageSource::files
  std::uint32_t line = 0;  // from 1
};

// A page with its includes as one script. Text between the blocks stays outside of it: the script says
// `__text(3);` where text 3 is written, and `__write((value));` where a value is.
struct PageSource {
  std::string script;
  std::vector<std::string> texts;
  std::vector<std::string> files;       // the page first; paths below the root
  std::vector<LinePlace> lines;         // of each line of the script
  std::vector<LinePlace> includedFrom;  // of each file where it came in first; line 0 for the page itself
  PageDirective directive;              // of the page itself; those of includes are read past

  // The place of a line of the script, counted from 1. Past the script's end, where the compiler misses what the page
  // leaves open, that is the last line of the page's own script; for 0, the page without a line.
  LinePlace PlaceOf(int line) const;

  // The includes that a file came in by, from the inside out; none for the page itself.
  std::vector<CodePlace> IncludesOf(const std::string& file) const;
};

}  // namespace kalvo::host
