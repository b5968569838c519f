#include "host/script/page/page_parser.h"

#include <algorithm>
#include <utility>

#include "host/script/page/dialect.h"
#include "host/script/page/page_paths.h"
#include "host/script/page/script_element.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/utf8.h"

namespace kalvo::host {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kReplacement = "\uFFFD";
constexpr std::string_view kBlanks = " \t\r\n";

std::string_view Trimmed(std::string_view text) {
  const std::size_t from = text.find_first_not_of(kBlanks);
  if (from == std::string::npos) return {};
  return text.substr(from, text.find_last_not_of(kBlanks) - from + 1);
}

// Takes a word off the front of a text, in any case.
bool Takes(std::string_view& text, std::string_view word) {
  if (!EqualsIgnoringAsciiCase(text.substr(0, word.size()), word)) return false;
  text.remove_prefix(word.size());
  return true;
}

// The length of the line break at a place: 0 for none. The engine also counts U+2028 and U+2029.
std::size_t BreakLength(std::string_view text, std::size_t at) {
  if (text[at] == '\n') return 1;
  if (text[at] == '\r') return at + 1 < text.size() && text[at + 1] == '\n' ? 2 : 1;
  const std::string_view unit = text.substr(at, 3);
  return unit == "\u2028" || unit == "\u2029" ? 3 : 0;
}

class Parser {
 public:
  explicit Parser(PageFiles& files) : files_(files) {}

  PageSource Parse(std::string_view page) {
    const auto path = PathBelowRoot("", page);
    const auto bytes = path ? files_.Read(*path) : std::nullopt;
    if (!bytes) throw PageFault{{FailureKind::NotFound, "there is no such page", std::string(page), 0}};
    ParseFile(*path, *bytes, {0, 0}, Holding::Page);
    source_.script = WithAssignableItems(std::move(source_.script));
    return std::move(source_);
  }

 private:
  // One file that is being read: a page, or an include inside of it.
  struct File {
    std::uint32_t index;
    std::string path;
    std::string text;
    std::size_t at = 0;
    std::uint32_t line = 1;
    std::optional<std::size_t> include;    // where the next include begins, once looked for
    bool hasCode = false;                  // whether code was met already
    std::optional<std::size_t> element{};  // where the next script element of the server begins, once looked for
  };

  // What an included file holds: text with blocks, or nothing but code.
  enum class Holding { Page, Code };

  [[noreturn]] void Fail(const File& file, std::uint32_t line, std::string message) const {
    throw PageFault{{FailureKind::Syntax, std::move(message), file.path, static_cast<int>(line)}};
  }

  void ParseFile(const std::string& path, std::string_view bytes, LinePlace from, Holding holding) {
    bytes_ += bytes.size();
    if (bytes.substr(0, kByteOrderMark.size()) == kByteOrderMark) bytes.remove_prefix(kByteOrderMark.size());
    File file{FileIndex(path, from), path, std::string(bytes), 0, 1, {}, false};
    RequireUtf8(file);
    if (bytes_ > kMaxPageBytes) Fail(file, 1, "the page and its includes are larger than 16 MiB");
    open_.push_back(path);
    if (holding == Holding::Code) {
      EmitCode(file, 1, file.text);
    } else {
      ParseDirectiveAt(file, file.text.find_first_not_of(kBlanks));
      while (file.at < file.text.size()) ParsePiece(file);
    }
    open_.pop_back();
  }

  // What is no UTF-8 would be shown mangled, and a page in UTF-16 as its source.
  void RequireUtf8(const File& file) const {
    std::size_t bad = file.text.find('\0');
    if (bad == std::string::npos && IsAscii(file.text)) return;
    for (std::size_t at = 0; at < file.text.size() && bad == std::string::npos;) {
      const Character character = CharacterAt(file.text, at);
      const bool isWritten = file.text.compare(at, kReplacement.size(), kReplacement) == 0;
      if (character.code == kReplacementCharacter && !isWritten) bad = at;
      at += character.length;
    }
    if (bad == std::string::npos) return;
    const auto line = 1 + std::count(file.text.begin(), file.text.begin() + static_cast<std::ptrdiff_t>(bad), '\n');
    Fail(file, static_cast<std::uint32_t>(line), "the file is not UTF-8");
  }

  std::uint32_t FileIndex(const std::string& path, LinePlace from) {
    const auto found = std::find(source_.files.begin(), source_.files.end(), path);
    const auto index = found - source_.files.begin();
    if (found == source_.files.end()) {
      source_.files.push_back(path);
      source_.includedFrom.push_back(from);
    }
    return static_cast<std::uint32_t>(index);
  }

  // Moves past a piece of the file and counts its lines as editors do.
  std::string_view Take(File& file, std::size_t length) {
    const std::string_view piece = std::string_view(file.text).substr(file.at, length);
    for (std::size_t i = 0; i < piece.size(); ++i) {
      const std::size_t length_of_break = BreakLength(piece, i);
      if (length_of_break == 1 || length_of_break == 2) ++file.line;
      if (length_of_break == 2) ++i;
    }
    file.at += piece.size();
    return piece;
  }

  // <%@ Language="JavaScript" ... %>, the rest of whose line is not text. Blanks before it are none either.
  void ParseDirectiveAt(File& file, std::size_t start) {
    if (start == std::string::npos || file.text.compare(start, 3, "<%@") != 0) return;
    Take(file, start - file.at);
    file.hasCode = true;
    const std::uint32_t line = file.line;
    const std::size_t end = file.text.find("%>", start);
    if (end == std::string::npos) Fail(file, line, "the block \"<%@\" does not end with \"%>\"");
    const std::string_view directive = Take(file, end + 2 - start);
    CheckLanguage(file, line, ToLowerAscii(directive));
    CheckCodePage(file, line, directive);
    if (open_.size() == 1) TakeDirective(file, line, directive);
    const std::size_t rest = file.text.find_first_not_of(" \t", file.at);
    if (rest == std::string::npos) return;
    Take(file, rest - file.at + BreakLength(file.text, rest));
  }

  void TakeDirective(const File& file, std::uint32_t line, std::string_view directive) {
    try {
      source_.directive = ParseDirective(directive);
    } catch (const DirectiveFault& fault) {
      Fail(file, line, fault.message);
    }
  }

  void CheckLanguage(const File& file, std::uint32_t line, std::string_view directive) const {
    const std::size_t at = directive.find("language");
    if (at == std::string::npos) return;
    const bool known = directive.find("javascript", at) != std::string::npos ||
                       directive.find("jscript", at) != std::string::npos ||
                       directive.find("ecmascript", at) != std::string::npos;
    if (!known) Fail(file, line, "the page's language must be JavaScript");
  }

  // Code pages other than UTF-8's own, which is no file's here.
  void CheckCodePage(const File& file, std::uint32_t line, std::string_view directive) const {
    const auto page = AttributeOf(directive, "codepage");
    if (page && *page != "65001") Fail(file, line, "a page is UTF-8: CodePage is 65001 or left out");
  }

  // The next piece: text up to a block or an include, a block, or an include.
  void ParsePiece(File& file) {
    const std::string_view text = file.text;
    const std::size_t block = std::min(text.find("<%", file.at), text.size());
    if (!file.include || *file.include < file.at) file.include = FindInclude(text, file.at);
    if (!file.element || *file.element < file.at) file.element = FindServerScript(text, file.at);
    const std::size_t next = std::min({block, *file.include, *file.element});
    if (next > file.at) {
      const std::uint32_t line = file.line;
      EmitText(file, line, Take(file, next - file.at));
    } else if (block == file.at) {
      ParseBlock(file);
    } else if (*file.element == file.at) {
      ParseScriptElement(file);
    } else {
      ParseInclude(file);
    }
  }

  // Where the next "<!-- #include" begins, or the end of the text.
  static std::size_t FindInclude(std::string_view text, std::size_t from) {
    for (std::size_t at = text.find("<!--", from); at != std::string::npos; at = text.find("<!--", at + 4)) {
      std::string_view rest = text.substr(at + 4);
      rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
      if (Takes(rest, "#include")) return at;
    }
    return text.size();
  }

  // <script runat="server"> ... </script>: code as that of a block, and with src="..." a file of code.
  void ParseScriptElement(File& file) {
    const std::uint32_t line = file.line;
    const std::string_view text = std::string_view(file.text).substr(file.at);
    const std::size_t tagEnd = text.find('>');
    const std::size_t end = FindEndTag(text, tagEnd);
    if (end == std::string::npos) Fail(file, line, "the element \"script\" does not end with \"</script>\"");
    const std::string tag(text.substr(0, tagEnd));
    CheckLanguage(file, line, ToLowerAscii(AttributeOf(tag, "language") ? tag : ""));
    file.hasCode = true;
    const std::size_t length = text.substr(0, tagEnd).ends_with('/') ? 0 : end - tagEnd - 1;
    Take(file, tagEnd + 1);
    const std::uint32_t codeLine = file.line;
    const std::string_view code = Take(file, length);
    if (const auto source = AttributeOf(tag, "src")) {
      Include(file, line, *source, source->starts_with('/'), Holding::Code);
    } else {
      EmitCode(file, codeLine, code);
    }
    if (length > 0 || !tag.ends_with('/')) Take(file, file.text.find('>', file.at) + 1 - file.at);
  }

  void ParseBlock(File& file) {
    if (!file.hasCode && file.text.compare(file.at, 3, "<%@") == 0) return ParseDirectiveAt(file, file.at);
    file.hasCode = true;
    const std::uint32_t line = file.line;
    const std::size_t end = file.text.find("%>", file.at + 2);
    if (end == std::string::npos) Fail(file, line, "the block \"<%\" does not end with \"%>\"");
    Take(file, 2);
    const std::size_t first = std::min(file.text.find_first_not_of(kBlanks, file.at), end);
    const char kind = file.text[first];
    if (file.text[file.at] == '@') Fail(file, line, "the block \"<%@\" must stand before all code of its file");
    if (kind == '=') Take(file, first + 1 - file.at);
    const std::uint32_t codeLine = file.line;
    const std::string_view code = Take(file, end - file.at);
    Take(file, 2);
    if (kind != '=') return EmitCode(file, codeLine, code);
    if (Trimmed(code).empty()) Fail(file, line, "the block \"<%=\" has no expression");
    source_.script += "__write((";
    EmitCode(file, codeLine, code);
    EmitLine(file, file.line, "));");
  }

  void ParseInclude(File& file) {
    const std::uint32_t line = file.line;
    const std::size_t end = file.text.find("-->", file.at);
    if (end == std::string::npos) Fail(file, line, "the include does not end with \"-->\"");
    std::string_view command = Trimmed(Take(file, end + 3 - file.at));
    command = Trimmed(command.substr(4, command.size() - 7));
    Takes(command, "#include");
    command = Trimmed(command);
    const bool fromRoot = Takes(command, "virtual");
    if (!fromRoot && !Takes(command, "file")) Fail(file, line, "an include must name file=\"...\" or virtual=\"...\"");
    command = Trimmed(command);
    const bool named = Takes(command, "=") && (command = Trimmed(command)).size() > 2 &&
                       (command.front() == '"' || command.front() == '\'') &&
                       command.find(command.front(), 1) == command.size() - 1;
    if (!named) Fail(file, line, "an include must name its file in quotation marks");
    Include(file, line, command.substr(1, command.size() - 2), fromRoot, Holding::Page);
  }

  void Include(const File& file, std::uint32_t line, std::string_view name, bool fromRoot, Holding holding) {
    if (!fromRoot && (name.front() == '/' || name.front() == '\\')) {
      Fail(file, line, "an include of a file must be relative; name it with virtual=\"...\"");
    }
    const std::string folder = file.path.substr(0, file.path.find_last_of('/') + 1);
    const auto path = PathBelowRoot(fromRoot ? std::string_view() : folder, name);
    if (!path) Fail(file, line, Named("the include \"", name, "\" leads out of the site"));
    if (std::find(open_.begin(), open_.end(), *path) != open_.end()) {
      Fail(file, line, Named("the include \"", name, "\" includes itself"));
    }
    if (open_.size() > kMaxIncludeDepth) Fail(file, line, "includes are nested too deeply");
    const auto bytes = files_.Read(*path);
    if (!bytes) Fail(file, line, Named("there is no include \"", name, "\""));
    ParseFile(*path, *bytes, {file.index, line}, holding);
  }

  static std::string Named(std::string_view before, std::string_view name, std::string_view after) {
    return Built([&](std::string& out) { Append(out, before, name, after); });
  }

  void EmitText(const File& file, std::uint32_t line, std::string_view text) {
    EmitLine(file, line, Built([&](std::string& out) { Append(out, "__text(", source_.texts.size(), ");"); }));
    source_.texts.emplace_back(text);
  }

  void EmitLine(const File& file, std::uint32_t line, std::string_view code) { EmitCode(file, line, code); }

  // Code as it stands, and a line break that ends a comment of it and lets a statement end without ";".
  void EmitCode(const File& file, std::uint32_t line, std::string_view code) {
    Append(source_.script, code, '\n');
    for (std::size_t i = 0; i < code.size(); ++i) {
      const std::size_t length = BreakLength(code, i);
      if (length == 0) continue;
      source_.lines.push_back({file.index, line});
      if (length < 3) ++line;
      i += length - 1;
    }
    source_.lines.push_back({file.index, line});
  }

  PageFiles& files_;
  PageSource source_;
  std::vector<std::string> open_;  // the files being read, the page first
  std::size_t bytes_ = 0;
};

}  // namespace

PageSource ParsePage(std::string_view page, PageFiles& files) { return Parser(files).Parse(page); }

}  // namespace kalvo::host
