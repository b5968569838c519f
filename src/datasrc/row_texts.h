#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kalvo {

// The texts that have been asked of the current row. Each stays where it is until the row is left, and its buffer
// serves the next row's text of the same place.
class RowTexts {
 public:
  // An empty text for the field, or the one that this row has been asked for already, emptied.
  std::string& Of(std::string_view field) {
    for (std::size_t i = 0; i < used_; ++i) {
      if (entries_[i]->field == field) return Emptied(*entries_[i]);
    }
    if (used_ == entries_.size()) entries_.push_back(std::make_unique<Entry>());
    Entry& entry = *entries_[used_++];
    entry.field = field;
    return Emptied(entry);
  }

  // The row has been left.
  void Forget() { used_ = 0; }

 private:
  struct Entry {
    std::string field;
    std::string text;
  };

  static std::string& Emptied(Entry& entry) {
    entry.text.clear();
    return entry.text;
  }

  std::vector<std::unique_ptr<Entry>> entries_;  // on their own, so that texts stay put
  std::size_t used_ = 0;
};

}  // namespace kalvo
