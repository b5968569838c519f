#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/script/page.h"
#include "host/script/page_directive.h"

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
  std::vector<std::string> files;  // the page first; paths below the root
  std::vector<LinePlace> lines;    // of each line of the script
  PageDirective directive;         // of the page itself; those of includes are read past

  // The place of a line of the script, counted from 1. Past the script's end, where the compiler misses what the page
  // leaves open, that is the last line of the page's own script; for 0, the page without a line.
  LinePlace PlaceOf(int line) const;
};

// Where the parser gets its files from.
class PageFiles {
 public:
  virtual ~PageFiles() = default;

  // The bytes of a file by its path below the root ("a/b.inc", checked not to lead out of it); nothing when there
  // is no such file.
  virtual std::optional<std::string> Read(const std::string& path) = 0;
};

// A page that cannot be made a script: a block that does not end, an include that is not there.
struct PageFault {
  PageFailure failure;
};

inline constexpr std::size_t kMaxIncludeDepth = 16;
inline constexpr std::size_t kMaxPageBytes = 16 << 20;  // with all its includes

// Reads a page and its includes. Throws PageFault.
PageSource ParsePage(std::string_view page, PageFiles& files);

// A path below the root without "." and "..", or nothing when it leads out. `base` is the folder it starts from.
std::optional<std::string> PathBelowRoot(std::string_view base, std::string_view path);

}  // namespace kalvo::host
