#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace kalvo {

// The text that a row source answered last. Whoever makes the next one takes its memory and gives it back filled: a
// question that a script asks in between finds nothing here and makes a text of its own.
class Answer {
 public:
  std::string Take() {
    std::string text = std::exchange(text_, {});
    text.clear();
    return text;
  }

  std::string_view Keep(std::string text) { return text_ = std::move(text); }

 private:
  std::string text_;
};

}  // namespace kalvo
