#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "host/script/page/page_result.h"
#include "host/script/page/page_source.h"

namespace kalvo::host {

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

}  // namespace kalvo::host
