#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "adapters/imap/imap_limits.h"

namespace kalvo::imap {

// Reads along with what a server sends, before the parser does, and says when it gets too long or too deep. The
// parser recurses at each parenthesis and keeps whole lines and literals, so only what passes here may reach it.
class ResponseGuard {
 public:
  explicit ResponseGuard(const Limits& limits) : limits_(limits) {}

  // A new command: its answer is counted from nothing.
  void Begin() { answerBytes_ = 0; }

  // True when the bytes may go on to the parser; false from the first ones that may not, for good.
  bool Accept(std::string_view bytes);

  // What was wrong, as the end of a sentence about the server; "" while all is well.
  const std::string& Refusal() const { return refusal_; }

 private:
  enum class State { Plain, Quoted, Escaped, LiteralSize, LiteralEnd };

  void Take(char byte);
  void TakeHead(char byte);
  void TakePlain(char byte);
  void TakeLiteralSize(char byte);
  void TakeProse(char byte);
  void EndLine();
  void Open();
  void Refuse(std::string_view what, std::size_t limit);

  const Limits limits_;
  State state_ = State::Plain;
  std::size_t answerBytes_ = 0, lineBytes_ = 0;
  std::size_t literalSize_ = 0, literalLeft_ = 0;
  int depth_ = 0;
  char before_ = 0;

  // The first two words of a line tell whether prose follows, where quotes, braces and parentheses mean nothing.
  int word_ = 0;
  std::string keyword_;
  bool prose_ = false;
  bool greeting_ = true;  // no line has ended yet
  std::string code_;      // how the prose begins, runs of blanks as one
  std::string refusal_;
};

}  // namespace kalvo::imap
