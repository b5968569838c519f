#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

#include "kalvo/platform/encoding.h"

namespace kalvo {

// A short text that every row of a table repeats, kept so that it is copied by whole blocks.
class RowConstant {
 public:
  static constexpr std::size_t kBlock = 32;
  static constexpr std::size_t kMostBytes = 8 * kBlock;

  RowConstant() = default;
  // A text of no more than `kMostBytes`; of a longer one nothing is kept.
  explicit RowConstant(std::string_view text) : size_(Fits(text) ? text.size() : 0) {
    std::copy_n(text.data(), size_, text_.data());
  }
  static bool Fits(std::string_view text) { return text.size() <= kMostBytes; }

  // Writes the text, and up to a block behind it.
  char* Write(char* to) const {
    std::memcpy(to, text_.data(), kBlock);
    for (std::size_t at = kBlock; at < size_; at += kBlock) std::memcpy(to + at, text_.data() + at, kBlock);
    return to + size_;
  }
  std::size_t Size() const { return size_; }

 private:
  std::array<char, kMostBytes> text_{};
  std::size_t size_ = 0;
};

// The text of many rows under way. Pieces are written straight into its memory: whoever writes asks for room first,
// and says where the text ends then.
class PageText {
 public:
  PageText() { Grow(kFirstSize); }

  // Where `size` bytes may be written, and `kSlack` behind them written over.
  char* Room(std::size_t size) {
    if (static_cast<std::size_t>(limit_ - end_) < size) Grow(size);
    return end_;
  }
  void EndAt(char* end) { end_ = end; }

  void Put(std::string_view text) {
    char* to = Room(text.size());
    std::memcpy(to, text.data(), text.size());
    EndAt(to + text.size());
  }
  // A literal, whose size is known to the compiler.
  template <std::size_t kSize>
  void Put(const char (&text)[kSize]) {
    char* to = Room(kSize - 1);
    std::memcpy(to, text, kSize - 1);
    EndAt(to + kSize - 1);
  }
  void Put(const RowConstant& text) { EndAt(text.Write(Room(text.Size()))); }
  void PutHtml(std::string_view text) { EndAt(WriteHtmlEncoded(Room(text.size() * kHtmlGrowth), text)); }
  void PutUrl(std::string_view text) { EndAt(WriteUrlEncoded(Room(text.size() * kUrlGrowth), text)); }

  std::size_t Size() const { return static_cast<std::size_t>(end_ - text_.get()); }
  std::string_view View() const { return {text_.get(), Size()}; }
  std::string_view From(std::size_t start) const { return View().substr(start); }
  void Shorten(std::size_t size) { end_ = text_.get() + size; }

 private:
  static constexpr std::size_t kSlack = 64;
  static constexpr std::size_t kFirstSize = 16 << 10;
  static_assert(kSlack >= kEncodingSlack && kSlack >= RowConstant::kBlock);

  void Grow(std::size_t size) {
    const std::size_t used = Size();
    const std::size_t capacity = std::max({kFirstSize, 2 * used, used + size});
    auto grown = std::make_unique_for_overwrite<char[]>(capacity + kSlack);
    if (used > 0) std::memcpy(grown.get(), text_.get(), used);
    text_ = std::move(grown);
    end_ = text_.get() + used;
    limit_ = text_.get() + capacity;
  }

  std::unique_ptr<char[]> text_;
  char* end_ = nullptr;
  char* limit_ = nullptr;
};

}  // namespace kalvo
