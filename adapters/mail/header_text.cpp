#include "adapters/mail/header_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "adapters/mail/charset.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/text_tools.h"

namespace kalvo::mail {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kBase64 = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

bool IsBlank(char c) { return kBlanks.find(c) != std::string::npos; }

// "=?charset*language?encoding?text?="
struct Word {
  std::string charset;  // in lower case
  bool isBase64;
  std::string_view text;
  std::size_t length;
};

std::optional<Word> WordAt(std::string_view field) {
  if (!field.starts_with("=?")) return std::nullopt;
  const std::size_t charsetEnd = field.find('?', 2);
  if (charsetEnd == std::string::npos || charsetEnd + 2 >= field.size() || field[charsetEnd + 2] != '?') {
    return std::nullopt;
  }
  std::string_view charset = field.substr(2, charsetEnd - 2);
  if (charset.empty() || std::any_of(charset.begin(), charset.end(), IsBlank)) return std::nullopt;
  const char encoding = static_cast<char>(field[charsetEnd + 1] | 0x20);
  if (encoding != 'b' && encoding != 'q') return std::nullopt;
  const std::size_t begin = charsetEnd + 3, end = field.find("?=", begin);
  if (end == std::string::npos) return std::nullopt;
  charset = charset.substr(0, charset.find('*'));
  return Word{ToLowerAscii(charset), encoding == 'b', field.substr(begin, end - begin), end + 2};
}

// The bytes of neighbouring words of one charset. A word may end inside a character, and with mailers that cut blindly
// inside a base64 group; padding ends a group.
class WordBytes {
 public:
  void Add(const Word& word) { word.isBase64 ? AddBase64(word.text) : AddQuoted(word.text); }
  const std::string& Bytes() const { return bytes_; }

 private:
  void AddBase64(std::string_view text) {
    for (const char c : text) {
      if (c == '=') bits_ = 0, group_ = 0;
      const auto digit = kBase64.find(c);
      if (digit == std::string::npos) continue;
      group_ = (group_ << 6 | static_cast<std::uint32_t>(digit)) & 0xFFFF;
      bits_ += 6;
      if (bits_ < 8) continue;
      bits_ -= 8;
      bytes_ += static_cast<char>(group_ >> bits_ & 0xFF);
    }
    // Bits that are all zero fill up an unpadded group.
    if ((group_ & ((1u << bits_) - 1)) == 0) bits_ = 0;
  }

  void AddQuoted(std::string_view text) {
    bits_ = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
      const int high = text[i] == '=' && i + 2 < text.size() ? HexValue(text[i + 1]) : -1;
      const int low = high < 0 ? -1 : HexValue(text[i + 2]);
      if (low >= 0) {
        bytes_ += static_cast<char>(high * 16 + low);
        i += 2;
      } else {
        bytes_ += text[i] == '_' ? ' ' : text[i];
      }
    }
  }

  std::string bytes_;
  std::uint32_t group_ = 0;
  int bits_ = 0;
};

// Hands over the field's pieces in their order, in UTF-8: runs of encoded words, and what stands between them. Blanks
// between two words are none.
template <typename Visit>
void ForEachPiece(std::string_view field, std::string_view charset, Visit&& visit) {
  std::size_t plain = 0;  // where the text since the last word begins
  std::string wordCharset;
  bool inWords = false;
  WordBytes words;
  const auto endWords = [&] {
    if (inWords) visit(ToUtf8(words.Bytes(), wordCharset), true);
    inWords = false;
    words = {};
  };
  const auto endPlain = [&](std::size_t end) {
    const std::string_view text = field.substr(plain, end - plain);
    const bool onlyBlanks = std::all_of(text.begin(), text.end(), IsBlank);
    if (text.empty() || (onlyBlanks && inWords && end < field.size())) return;
    endWords();
    visit(ToUtf8(text, charset), false);
  };
  for (std::size_t at = field.find("=?"); at != std::string::npos; at = field.find("=?", at)) {
    const auto word = WordAt(field.substr(at));
    if (!word) {
      at += 2;
      continue;
    }
    endPlain(at);
    if (word->charset != wordCharset) endWords();
    inWords = true;
    wordCharset = word->charset;
    words.Add(*word);
    plain = at += word->length;
  }
  endPlain(field.size());
  endWords();
}

std::string Base64Of(std::string_view bytes) {
  std::string text;
  for (; !bytes.empty(); bytes.remove_prefix(std::min<std::size_t>(3, bytes.size()))) {
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < 3; ++i)
      group = group << 8 | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u);
    for (std::size_t i = 0; i < 4; ++i) text += i <= bytes.size() ? kBase64[group >> (18 - 6 * i) & 63] : '=';
  }
  return text;
}

}  // namespace

std::string HeaderText(std::string_view field, std::string_view charset) {
  std::string text;
  ForEachPiece(field, charset, [&](std::string_view piece, bool) { text += piece; });
  return OneLine(text);
}

std::string PlainWords(std::string_view field, std::string_view charset) {
  std::string text;
  ForEachPiece(field, charset, [&](const std::string& piece, bool isWords) {
    isWords ? Append(text, "=?UTF-8?B?", Base64Of(piece), "?=") : Append(text, piece);
  });
  std::erase_if(text, [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
  return text;
}

std::string OneLine(std::string_view text) {
  std::string line;
  for (const char c : text) {
    if (!IsBlank(c)) {
      line += c;
    } else if (!line.empty() && line.back() != ' ') {
      line += ' ';
    }
  }
  if (line.ends_with(' ')) line.pop_back();
  return line;
}

std::string PlainDate(std::string_view field) {
  std::string date = OneLine(field);
  const auto time = std::min(date.find(':'), date.size());
  const auto end = std::min(date.find('(', time), date.size());
  for (auto at = time; at < end; ++at) {
    if (date[at] >= 'a' && date[at] <= 'z') date[at] = static_cast<char>(date[at] - 'a' + 'A');
  }
  const auto sign = date.find_first_of("+-", time);
  if (sign >= end) return date;
  const auto digits = std::min(date.find_first_not_of("0123456789", sign + 1), date.size());
  if (digits - sign == 4) date.insert(sign + 1, 1, '0');
  return date;
}

}  // namespace kalvo::mail
