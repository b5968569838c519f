#include "host/script/text/encoding.h"

#include <array>

#include "base/percent.h"

namespace kalvo::host {

namespace {

using ByteSet = std::array<bool, 256>;

constexpr ByteSet SetOf(std::string_view bytes) {
  ByteSet set{};
  for (const char byte : bytes) set[static_cast<unsigned char>(byte)] = true;
  return set;
}

constexpr ByteSet kReferenced = SetOf("&<>\"");
constexpr ByteSet kKeptInUrls = SetOf("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789");

// Copies runs of bytes that stay, and hands every other byte to `replace`.
template <typename Stays, typename Replace>
void CopyRuns(std::string& out, std::string_view text, Stays stays, Replace replace) {
  std::size_t start = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (stays(static_cast<unsigned char>(text[i]))) continue;
    out.append(text, start, i - start);
    replace(text[i]);
    start = i + 1;
  }
  out.append(text, start, text.size() - start);
}

constexpr std::string_view Reference(char byte) {
  switch (byte) {
    case '&': return "&amp;";
    case '<': return "&lt;";
    case '>': return "&gt;";
    default: return "&quot;";
  }
}

}  // namespace

void AppendHtmlEncoded(std::string& out, std::string_view text) {
  CopyRuns(
      out, text, [](unsigned char byte) { return !kReferenced[byte]; }, [&](char byte) { out += Reference(byte); });
}

void AppendUrlEncoded(std::string& out, std::string_view text) {
  CopyRuns(
      out, text, [](unsigned char byte) { return kKeptInUrls[byte]; },
      [&](char byte) {
        if (byte == ' ') {
          out += '+';
          return;
        }
        base::AppendPercent(out, byte);
      });
}

}  // namespace kalvo::host
