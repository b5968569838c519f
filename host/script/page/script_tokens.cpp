#include "host/script/page/script_tokens.h"

#include <algorithm>
#include <array>
#include <string>

namespace kalvo::host {
namespace {

// Longest first: the first that fits is the mark.
constexpr std::string_view kMarks[] = {
    ">>>=", "===", "!==", ">>>", "<<=", ">>=", "**=", "...", "=>", "==", "!=", "<=", ">=", "&&", "||",
    "??",   "?.",  "++",  "--",  "+=",  "-=",  "*=",  "/=",  "%=", "&=", "|=", "^=", "<<", ">>", "**"};

// Words that an expression follows, so that a slash behind them begins a pattern.
constexpr std::string_view kBeforeExpressions[] = {"return", "typeof", "case", "in", "of",   "delete",
                                                   "void",   "throw",  "new",  "do", "else", "instanceof"};
// Words whose parentheses hold a condition: what follows them is a statement.
constexpr std::string_view kBeforeConditions[] = {"if", "while", "for", "with"};

template <typename List>
bool Holds(const List& list, std::string_view word) {
  return std::find(std::begin(list), std::end(list), word) != std::end(list);
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Every byte of a character beyond ASCII counts as a letter.
bool IsWordByte(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || IsDigit(c) || c == '_' || c == '$' || (c & 0x80) != 0;
}

class Tokens {
 public:
  explicit Tokens(std::string_view script) : script_(script) {}

  std::vector<ScriptToken> All() {
    while (at_ < script_.size()) Take();
    return std::move(tokens_);
  }

 private:
  char At(std::size_t place) const { return place < script_.size() ? script_[place] : '\0'; }

  void Take() {
    const char c = script_[at_];
    if (static_cast<unsigned char>(c) <= ' ') {
      ++at_;
    } else if (c == '/' && At(at_ + 1) == '/') {
      at_ = std::min(script_.find('\n', at_), script_.size());
    } else if (c == '/' && At(at_ + 1) == '*') {
      const std::size_t end = script_.find("*/", at_ + 2);
      at_ = end == std::string::npos ? script_.size() : end + 2;
    } else if (c == '"' || c == '\'' || c == '`') {
      Add(c == '`' ? TokenKind::Template : TokenKind::Text, QuotedEnd(c));
    } else if (IsDigit(c) || (c == '.' && IsDigit(At(at_ + 1)))) {
      Add(TokenKind::Number, RunEnd([](char d) { return IsWordByte(d) || d == '.'; }));
    } else if (IsWordByte(c)) {
      Add(TokenKind::Word, RunEnd(IsWordByte));
    } else if (c == '/' && MayBePattern() && PatternEnd() > 0) {
      Add(TokenKind::Pattern, PatternEnd());
    } else {
      AddMark();
    }
  }

  template <typename Test>
  std::size_t RunEnd(Test&& test) const {
    std::size_t end = at_;
    while (end < script_.size() && test(script_[end])) ++end;
    return end;
  }

  // A text ends at its line's end at the latest, a template does not.
  std::size_t QuotedEnd(char quote) const {
    for (std::size_t end = at_ + 1; end < script_.size(); ++end) {
      if (script_[end] == '\\') {
        ++end;
      } else if (script_[end] == quote) {
        return end + 1;
      } else if (script_[end] == '\n' && quote != '`') {
        return end;
      }
    }
    return script_.size();
  }

  // Behind the flags of a pattern; 0 where the line has no second slash.
  std::size_t PatternEnd() const {
    bool inClass = false;
    for (std::size_t end = at_ + 1; end < script_.size() && script_[end] != '\n'; ++end) {
      if (script_[end] == '\\') {
        ++end;
      } else if (script_[end] == '[') {
        inClass = true;
      } else if (script_[end] == ']') {
        inClass = false;
      } else if (script_[end] == '/' && !inClass) {
        while (end + 1 < script_.size() && IsWordByte(script_[end + 1])) ++end;
        return end + 1;
      }
    }
    return 0;
  }

  bool MayBePattern() const {
    if (tokens_.empty()) return true;
    const ScriptToken& last = tokens_.back();
    if (last.kind == TokenKind::Word) return Holds(kBeforeExpressions, last.text);
    if (last.kind != TokenKind::Mark) return false;
    if (last.text == ")") return afterCondition_;
    return last.text != "]";
  }

  void AddMark() {
    const std::string_view rest = script_.substr(at_);
    const auto* mark = std::find_if(std::begin(kMarks), std::end(kMarks), [&](auto m) { return rest.starts_with(m); });
    const char c = script_[at_];
    if (c == '(') {
      opened_.push_back(!tokens_.empty() && Holds(kBeforeConditions, tokens_.back().text));
    } else if (c == ')' && !opened_.empty()) {
      afterCondition_ = opened_.back();
      opened_.pop_back();
    }
    Add(TokenKind::Mark, at_ + (mark == std::end(kMarks) ? 1 : mark->size()));
  }

  void Add(TokenKind kind, std::size_t end) {
    tokens_.push_back({kind, script_.substr(at_, end - at_), at_});
    at_ = end;
  }

  std::string_view script_;
  std::size_t at_ = 0;
  std::vector<ScriptToken> tokens_;
  std::vector<bool> opened_;     // of each open parenthesis, whether it holds a condition
  bool afterCondition_ = false;  // of the parenthesis that was closed last
};

}  // namespace

std::vector<ScriptToken> TokensOf(std::string_view script) { return Tokens(script).All(); }

}  // namespace kalvo::host
