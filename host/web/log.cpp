#include "host/web/log.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>

#include "host/parts/setting_error.h"
#include "host/script/text/text.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/text_tools.h"

namespace kalvo::web {
namespace {

constexpr std::size_t kMostOfAText = 200;  // bytes

// Characters that end a line, steer a terminal or turn text around, in UTF-8, whose bytes are in the characters' order.
struct Hidden {
  std::string_view first, last;
};
// clang-format off
constexpr Hidden kHidden[] = {
  {{"\0", 1},           "\x1F"},               // C0
  {"\x7F",              "\x7F"},
  {"\xC2\x80",          "\xC2\x9F"},           // C1
  {"\xD8\x9C",          "\xD8\x9C"},           // Arabic letter mark
  {"\xE2\x80\x8B",      "\xE2\x80\x8F"},       // of no width, left-to-right and right-to-left marks
  {"\xE2\x80\xA8",      "\xE2\x80\xAE"},       // line and paragraph separators, embeddings and overrides
  {"\xE2\x81\xA0",      "\xE2\x81\xAF"},       // invisible operators, isolates
  {"\xEF\xBB\xBF",      "\xEF\xBB\xBF"},       // byte order mark
  {"\xF3\xA0\x80\x80",  "\xF3\xA0\x81\xBF"},   // tags
};
// clang-format on

// How many bytes at the beginning of the text are a hidden character; 0 for any other.
std::size_t HiddenAt(std::string_view text) {
  for (const Hidden& range : kHidden) {
    const std::string_view character = text.substr(0, range.first.size());
    if (character.size() == range.first.size() && character >= range.first && character <= range.last) {
      return character.size();
    }
  }
  return 0;
}

void AppendEscaped(std::string& out, std::string_view bytes) {
  for (const char character : bytes) {
    const auto byte = static_cast<std::uint8_t>(character);
    out += "\\x";
    AppendHexadecimal(out, {&byte, 1}, HexLetters::Capital);
  }
}

// A backslash that is followed by "x" is escaped itself: nobody takes the text for what this wrote.
void AppendPrintable(std::string& out, std::string_view text) {
  while (!text.empty()) {
    std::size_t hidden = HiddenAt(text);
    if (hidden == 0 && text.starts_with("\\x")) hidden = 1;
    AppendEscaped(out, text.substr(0, hidden));
    if (hidden == 0) out += text.front();
    text.remove_prefix(std::max<std::size_t>(hidden, 1));
  }
}

void AppendNow(std::string& out) {
  const std::time_t now = std::time(nullptr);
  std::tm calendar{};
  localtime_r(&now, &calendar);
  char text[32];
  out.append(text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &calendar));
}

}  // namespace

Log::Log(std::string file) : file_(std::move(file)) { Reopen(); }

void Log::Write(std::string_view text) const {
  std::string line;
  AppendNow(line);
  Append(line, " [", static_cast<int>(getpid()), "] ");
  AppendPrintable(line, host::WellFormed(text));
  line += '\n';
  // A log that cannot be written is no reason to stop serving.
  if (write(Descriptor(), line.data(), line.size()) < 0) return;
}

void Log::Reopen() {
  if (file_ == "-") return;
  base::File opened = base::Open(file_, O_WRONLY | O_APPEND | O_CREAT, 0640);
  if (!opened) throw host::SettingError("the log " + file_ + " cannot be written: " + std::strerror(errno));
  opened_ = std::move(opened);
}

int Log::Descriptor() const { return opened_ ? opened_.Handle() : STDERR_FILENO; }

std::string InLog(std::string_view text) {
  if (text.size() <= kMostOfAText) return std::string(text);
  std::size_t end = kMostOfAText;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;  // no half of a character
  return Built([&](std::string& out) { Append(out, text.substr(0, end), "... (", text.size(), " bytes)"); });
}

}  // namespace kalvo::web
