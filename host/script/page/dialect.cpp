#include "host/script/page/dialect.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <vector>

#include "host/script/page/script_tokens.h"

namespace kalvo::host {
namespace {

constexpr std::string_view kAssignments[] = {"=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "<<=", ">>=", ">>>="};

bool IsAssignment(const ScriptToken& token) {
  return token.kind == TokenKind::Mark &&
         std::find(std::begin(kAssignments), std::end(kAssignments), token.text) != std::end(kAssignments);
}

bool Is(const ScriptToken& token, TokenKind kind, std::string_view text) {
  return token.kind == kind && token.text == text;
}

// A text that is put into the script.
struct Insertion {
  std::size_t at;
  std::string_view text;
};

class Assignments {
 public:
  explicit Assignments(std::string_view script) : tokens_(TokensOf(script)) {}

  std::vector<Insertion> Find() {
    for (std::size_t i = 0; i < tokens_.size(); ++i) {
      if (i > 0 && Is(tokens_[i - 1], TokenKind::Mark, ".")) continue;
      if (Is(tokens_[i], TokenKind::Word, "Session")) {
        Take(i + 1, tokens_[i].at + tokens_[i].text.size(), ".Reference");
      } else if (Is(tokens_[i], TokenKind::Word, "Response") && Follows(i + 1, ".") && Follows(i + 2, "Cookies")) {
        Take(i + 3, 0, "");
      }
    }
    std::sort(found_.begin(), found_.end(), [](const auto& a, const auto& b) { return a.at < b.at; });
    return std::move(found_);
  }

 private:
  bool Follows(std::size_t i, std::string_view text) const { return i < tokens_.size() && tokens_[i].text == text; }

  // The token of the parenthesis that closes the one at `i`; none where it is not closed.
  std::size_t Closing(std::size_t i) const {
    std::size_t depth = 0;
    for (; i < tokens_.size(); ++i) {
      if (tokens_[i].kind != TokenKind::Mark) continue;
      if (tokens_[i].text == "(") ++depth;
      if (tokens_[i].text == ")" && --depth == 0) return i;
    }
    return tokens_.size();
  }

  // A call whose parenthesis is the token at `open`, where an assignment stands behind it.
  void Take(std::size_t open, std::size_t nameEnd, std::string_view member) {
    if (!Follows(open, "(")) return;
    const std::size_t close = Closing(open);
    if (close + 1 >= tokens_.size() || !IsAssignment(tokens_[close + 1])) return;
    if (!member.empty()) found_.push_back({nameEnd, member});
    found_.push_back({tokens_[close].at + 1, ".value"});
  }

  std::vector<ScriptToken> tokens_;
  std::vector<Insertion> found_;
};

constexpr std::string_view kNewerMarks[] = {"=>", "?.", "??", "..."};
constexpr std::string_view kNewerWords[] = {"let", "class", "async", "await", "import", "export", "yield"};

// What of a newer language begins at token `i`; "" for none.
std::string_view NewerAt(std::span<const ScriptToken> tokens, std::size_t i) {
  const ScriptToken& token = tokens[i];
  const auto among = [&](const auto& list) {
    return std::find(std::begin(list), std::end(list), token.text) != std::end(list);
  };
  const bool isMember = i > 0 && tokens[i - 1].text == ".";
  if (token.kind == TokenKind::Template) return "`";
  if (token.kind == TokenKind::Mark && among(kNewerMarks)) return token.text;
  if (token.kind != TokenKind::Word || isMember || i + 1 == tokens.size()) return "";
  const bool beforeName =
      tokens[i + 1].kind == TokenKind::Word || tokens[i + 1].text == "[" || tokens[i + 1].text == "{";
  if (among(kNewerWords) && beforeName) return token.text;
  const bool isLoop = token.text == "of" && i > 1 && tokens[i - 1].kind == TokenKind::Word &&
                      (tokens[i - 2].kind == TokenKind::Word || tokens[i - 2].text == "(");
  return isLoop ? token.text : "";
}

// `function f(a = 1)`: an assignment among the parameters.
bool HasDefault(std::span<const ScriptToken> tokens, std::size_t i) {
  if (!Is(tokens[i], TokenKind::Word, "function")) return false;
  while (i < tokens.size() && tokens[i].text != "(") ++i;
  for (; i < tokens.size() && tokens[i].text != ")"; ++i) {
    if (Is(tokens[i], TokenKind::Mark, "=")) return true;
  }
  return false;
}

}  // namespace

std::string WithAssignableItems(std::string script) {
  if (script.find("Session") == std::string::npos && script.find("Cookies") == std::string::npos) return script;
  const std::vector<Insertion> insertions = Assignments(script).Find();
  std::string out;
  std::size_t from = 0;
  for (const Insertion& insertion : insertions) {
    out.append(script, from, insertion.at - from).append(insertion.text);
    from = insertion.at;
  }
  return out.append(script, from);
}

std::string NewerSyntax(std::string_view script, int line) {
  const std::vector<ScriptToken> tokens = TokensOf(script);
  std::string_view last;
  std::ptrdiff_t breaks = 0;
  std::size_t counted = 0;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    const std::string_view passed = script.substr(counted, tokens[i].at - counted);
    breaks += std::count(passed.begin(), passed.end(), '\n');
    counted = tokens[i].at;
    if (line > 0 && breaks >= line) break;
    if (const std::string_view newer = NewerAt(tokens, i); !newer.empty()) last = newer;
    if (HasDefault(tokens, i)) last = "a default parameter";
  }
  return std::string(last);
}

}  // namespace kalvo::host
