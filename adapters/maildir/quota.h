#pragma once

#include <cstdint>

#include "adapters/maildir/files.h"

namespace kalvo::maildir {

// The count that mail servers keep of a tree whose size is limited: the file "maildirsize" at its top, to which
// everybody who adds or removes messages appends a line. A tree without the file has no limit.
class Quota {
 public:
  // `tree` is the top of the tree, and outlives this.
  explicit Quota(const File& tree) : tree_(tree) {}

  // Notes messages that come (or go, with negative numbers). False where there is a limit and it cannot be noted;
  // `errno` says why.
  bool Note(std::int64_t bytes, int messages) const;

 private:
  const File& tree_;
};

}  // namespace kalvo::maildir
