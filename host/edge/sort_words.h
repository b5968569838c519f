#pragma once

#include <set>
#include <span>
#include <string>
#include <string_view>

namespace kalvo {
struct Platform;
}

namespace kalvo::edge {

// The words that reports sort by: the fields of every sorting column of the catalogue's tables, and the words of the
// tables' default orders. Made once; words are matched without regard to case, as databases match names.
class SortWords {
 public:
  explicit SortWords(const Platform& platform);

  // Whether a sort text is a list of these words or of `more`, each with "ASC", "DESC" or nothing behind it.
  bool Take(std::string_view sort, std::span<const std::string> more) const;

 private:
  void Add(std::string_view order);

  std::set<std::string, std::less<>> words_;  // in lower case
};

}  // namespace kalvo::edge
