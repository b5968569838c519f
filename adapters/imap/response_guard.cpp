#include "adapters/imap/response_guard.h"

#include <algorithm>
#include <array>

#include "kalvo/platform/append.h"

namespace kalvo::imap {

namespace {

constexpr std::array<std::string_view, 5> kProse = {"OK", "NO", "BAD", "BYE", "PREAUTH"};
constexpr std::size_t kKeywordBytes = 16;
constexpr std::size_t kCodeBytes = 32;

bool IsBlank(char byte) { return static_cast<unsigned char>(byte) <= 0x20; }

char Upper(char byte) { return byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 'a' + 'A') : byte; }

// The parser falls over a list of lasting flags whose first is not a flag ("[PERMANENTFLAGS ((").
bool BreaksTheParser(std::string_view code) {
  const auto take = [&](std::string_view word) {
    if (code.starts_with(' ')) code.remove_prefix(1);
    if (!code.starts_with(word)) return false;
    code.remove_prefix(word.size());
    return true;
  };
  if (!take("[") || !take("PERMANENTFLAGS") || !take("(")) return false;
  if (code.starts_with(' ')) code.remove_prefix(1);
  if (code.starts_with(')') || code.starts_with("\\*")) return false;
  if (code.starts_with('\\')) code.remove_prefix(1);
  const auto flag = code.empty() ? 0 : static_cast<unsigned char>(code[0]);
  return flag <= 0x20 || flag >= 0x7F || std::string_view("(){%*\"\\]").find(code[0]) != std::string::npos;
}

// In a greeting the parser falls over any code that has a list.
bool HasList(std::string_view code) {
  if (code.starts_with(' ')) code.remove_prefix(1);
  return code.starts_with('[') && code.substr(0, code.find(']')).find('(') != std::string::npos;
}

}  // namespace

bool ResponseGuard::Accept(std::string_view bytes) {
  answerBytes_ += bytes.size();
  if (answerBytes_ > limits_.answerBytes) Refuse("sent an answer of more bytes than ", limits_.answerBytes);
  for (std::size_t i = 0; i < bytes.size() && refusal_.empty();) {
    if (literalLeft_ > 0) {
      const auto skipped = std::min(literalLeft_, bytes.size() - i);
      literalLeft_ -= skipped;
      i += skipped;
      continue;
    }
    Take(bytes[i++]);
  }
  return refusal_.empty();
}

void ResponseGuard::Take(char byte) {
  if (++lineBytes_ > limits_.lineBytes) return Refuse("sent a line of more bytes than ", limits_.lineBytes);
  if (byte == '\n') {
    if (state_ == State::LiteralEnd) {
      literalLeft_ = literalSize_;
      state_ = State::Plain;
      before_ = ' ';
      return;
    }
    return EndLine();
  }
  if (prose_) return TakeProse(byte);
  if (byte == '\r') return;
  TakeHead(byte);
  if (prose_) return;
  switch (state_) {
    case State::Quoted:
      if (byte == '\\') state_ = State::Escaped;
      if (byte == '"') state_ = State::Plain;
      break;
    case State::Escaped: state_ = State::Quoted; break;
    case State::LiteralSize: TakeLiteralSize(byte); break;
    case State::LiteralEnd: state_ = State::Plain; [[fallthrough]];
    case State::Plain: TakePlain(byte); break;
  }
  before_ = byte;
}

// "+ go on" and "A1 NO text" are prose; "* 5 FETCH (" is not.
void ResponseGuard::TakeHead(char byte) {
  if (word_ > 1) return;
  if (word_ == 0 && keyword_.empty() && byte == '+') {
    prose_ = true;
    word_ = 2;
    return;
  }
  if (!IsBlank(byte)) {
    if (keyword_.size() < kKeywordBytes) keyword_ += Upper(byte);
    return;
  }
  if (keyword_.empty()) return;
  if (word_ == 1) prose_ = std::find(kProse.begin(), kProse.end(), keyword_) != kProse.end();
  keyword_.clear();
  word_++;
}

void ResponseGuard::TakeProse(char byte) {
  const bool isBlank = byte == ' ' || byte == '\t';  // other control characters are none to the parser
  if (code_.size() >= kCodeBytes || (isBlank && code_.ends_with(' '))) return;
  code_ += isBlank ? ' ' : Upper(byte);
}

void ResponseGuard::TakePlain(char byte) {
  switch (byte) {
    case '(': return Open();
    case ')': depth_ = std::max(0, depth_ - 1); return;
    case '"': state_ = State::Quoted; return;
    case '{':
      // Inside a word a brace is only a character.
      if (!IsBlank(before_) && before_ != '(') return;
      state_ = State::LiteralSize;
      literalSize_ = 0;
      return;
    default: return;
  }
}

void ResponseGuard::TakeLiteralSize(char byte) {
  if (byte >= '0' && byte <= '9') {
    literalSize_ = literalSize_ * 10 + static_cast<std::size_t>(byte - '0');
    if (literalSize_ > limits_.literalBytes) Refuse("announced a literal of more bytes than ", limits_.literalBytes);
    return;
  }
  if (byte == '+') return;
  state_ = State::Plain;
  if (byte == '}') {
    state_ = State::LiteralEnd;
  } else {
    TakePlain(byte);
  }
}

void ResponseGuard::EndLine() {
  // The parser might read on in a string that we take for closed.
  if (state_ != State::Plain && depth_ > 0) return Refuse("broke a line inside a quoted string", 0);
  if (BreaksTheParser(code_)) return Refuse("has flags that the protocol does not have", 0);
  if (greeting_ && HasList(code_)) return Refuse("greets with a list, which no greeting has", 0);
  greeting_ = false;
  code_.clear();
  state_ = State::Plain;
  lineBytes_ = 0;
  depth_ = 0;
  before_ = 0;
  word_ = 0;
  keyword_.clear();
  prose_ = false;
}

void ResponseGuard::Open() {
  if (++depth_ > limits_.depth) Refuse("nested parentheses deeper than ", static_cast<std::size_t>(limits_.depth));
}

void ResponseGuard::Refuse(std::string_view what, std::size_t limit) {
  refusal_.clear();
  Append(refusal_, what);
  if (limit > 0) Append(refusal_, limit);
}

}  // namespace kalvo::imap
