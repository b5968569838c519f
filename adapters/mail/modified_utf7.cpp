#include <algorithm>
#include <cstdint>
#include <optional>

#include "adapters/mail/shown_text.h"

namespace kalvo::mail {

namespace {

constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+,";

bool IsPlain(char c) { return c >= 0x20 && c < 0x7F && c != '&' && c != '.' && c != '/'; }

void AppendUtf8(std::string& out, char32_t code) {
  const auto put = [&](char32_t bits) { out += static_cast<char>(bits); };
  if (code < 0x80) return put(code);
  if (code < 0x800) return put(0xC0 | (code >> 6)), put(0x80 | (code & 0x3F));
  if (code < 0x10000) return put(0xE0 | (code >> 12)), put(0x80 | ((code >> 6) & 0x3F)), put(0x80 | (code & 0x3F));
  put(0xF0 | (code >> 18)), put(0x80 | ((code >> 12) & 0x3F));
  put(0x80 | ((code >> 6) & 0x3F)), put(0x80 | (code & 0x3F));
}

// The characters of a run as big-endian 16-bit units in base 64.
class Shifted {
 public:
  void Add(std::string& out, char32_t code) {
    if (code >= 0x10000) {
      Unit(out, 0xD800 | static_cast<std::uint32_t>((code - 0x10000) >> 10));
      Unit(out, 0xDC00 | static_cast<std::uint32_t>((code - 0x10000) & 0x3FF));
    } else {
      Unit(out, static_cast<std::uint32_t>(code));
    }
  }

  void End(std::string& out) {
    if (held_ > 0) out += kDigits[(bits_ << (6 - held_)) & 63];
    bits_ = 0, held_ = 0;
  }

 private:
  void Unit(std::string& out, std::uint32_t unit) {
    bits_ = (bits_ << 16) | unit;
    for (held_ += 16; held_ >= 6; held_ -= 6) out += kDigits[(bits_ >> (held_ - 6)) & 63];
  }

  std::uint32_t bits_ = 0;
  int held_ = 0;
};

// The characters of what stands between "&" and "-"; nothing where it is not well-formed.
std::optional<std::string> Unshift(std::string_view digits) {
  std::string out;
  std::uint32_t bits = 0;
  int held = 0;
  char32_t high = 0;
  for (const char digit : digits) {
    const std::size_t value = kDigits.find(digit);
    if (value == std::string::npos) return std::nullopt;
    bits = (bits << 6) | static_cast<std::uint32_t>(value);
    if ((held += 6) < 16) continue;
    held -= 16;
    const char32_t unit = (bits >> held) & 0xFFFF;
    const bool isLow = unit >= 0xDC00 && unit <= 0xDFFF;
    if (isLow != (high != 0)) return std::nullopt;
    if (unit >= 0xD800 && unit <= 0xDBFF) {
      high = unit;
      continue;
    }
    AppendUtf8(out, isLow ? 0x10000 + ((high - 0xD800) << 10) + (unit - 0xDC00) : unit);
    high = 0;
  }
  const bool padded = held < 6 && (bits & ((1u << held) - 1)) == 0;
  if (high != 0 || !padded) return std::nullopt;
  return out;
}

// The character at the front, which is taken off; a bad byte counts as itself.
char32_t Take(std::string_view& text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const std::size_t length = byte(0) >= 0xF0 ? 4 : byte(0) >= 0xE0 ? 3 : byte(0) >= 0xC0 ? 2 : 1;
  char32_t code = length == 1 ? byte(0) : byte(0) & (0xFFu >> (length + 1));
  const std::size_t used = std::min(length, text.size());
  for (std::size_t i = 1; i < used; ++i) code = (code << 6) | (byte(i) & 0x3Fu);
  text.remove_prefix(used);
  return code;
}

}  // namespace

std::string ToModifiedUtf7(std::string_view utf8) {
  std::string out;
  while (!utf8.empty()) {
    if (utf8.front() == '&') {
      out += "&-";
      utf8.remove_prefix(1);
    } else if (IsPlain(utf8.front())) {
      out += utf8.front();
      utf8.remove_prefix(1);
    } else {
      Shifted run;
      out += '&';
      while (!utf8.empty() && utf8.front() != '&' && !IsPlain(utf8.front())) run.Add(out, Take(utf8));
      run.End(out);
      out += '-';
    }
  }
  return out;
}

std::string FromModifiedUtf7(std::string_view name) {
  std::string out;
  for (std::size_t at = 0; at < name.size();) {
    if (name[at] != '&') {
      if (static_cast<unsigned char>(name[at]) >= 0x80) return std::string(name);
      out += name[at++];
      continue;
    }
    const std::size_t end = name.find('-', at);
    if (end == std::string::npos) return std::string(name);
    if (end == at + 1) {
      out += '&';
    } else {
      const auto run = Unshift(name.substr(at + 1, end - at - 1));
      if (!run) return std::string(name);
      out += *run;
    }
    at = end + 1;
  }
  return out;
}

}  // namespace kalvo::mail
