#include "adapters/mail/charset.h"

#include <iconv.h>

#include <algorithm>
#include <cerrno>

#include "kalvo/platform/conversion.h"
#include "kalvo/platform/utf8.h"

namespace kalvo::mail {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr std::string_view kUtf8 = "UTF-8", kWestern = "CP1252", kJapanese = "EUC-JP-MS", kMailJapanese = "ISO-2022-JP";
constexpr std::string_view kNone = "";  // bytes beyond ASCII give it the lie
constexpr std::size_t kLongestName = 40;

// clang-format off
constexpr struct { std::string_view name, means; } kCharsets[] = {
  {"ascii",             kNone},
  {"us-ascii",          kNone},
  {"ansi_x3.4-1968",    kNone},
  {"iso-8859-1",        kWestern},
  {"latin1",            kWestern},
  {"utf8",              kUtf8},
  {"utf-8",             kUtf8},
  {"unicode-1-1-utf-8", kUtf8},
  {"cp65001",           kUtf8},
  {"unicode-1-1-utf-7", "UTF-7"},
  {"iso-8859-8-i",      "ISO-8859-8"},
  {"iso-8859-8-e",      "ISO-8859-8"},
  {"gb2312",            "GB18030"},
  {"gb_2312-80",        "GB18030"},
  {"eucgb2312_cn",      "GB18030"},
  {"euc-cn",            "GB18030"},
  {"gbk",               "GB18030"},
  {"x-gbk",             "GB18030"},
  {"big5",              "BIG5-HKSCS"},
  {"ks_c_5601-1987",    "CP949"},
  {"euc-kr",            "CP949"},
  {"shift_jis",         "CP932"},
  {"shift-jis",         "CP932"},
  {"x-sjis",            "CP932"},
  {"sjis",              "CP932"},
  {"euc-jp",            kJapanese},
  {"iso-2022-jp",       kMailJapanese},
  {"iso-2022-jp-ms",    kMailJapanese},
  {"cp50220",           kMailJapanese},
  {"windows-874",       "CP874"},
  {"iso-8859-11",       "TIS-620"},
  {"x-mac-roman",       "MACINTOSH"},
};
// clang-format on

// Of a name that nobody should have to look up nothing is left.
std::string Meaning(std::string_view charset) {
  const std::string name = ToLowerAscii(charset);
  for (const auto& known : kCharsets) {
    if (known.name == name) return std::string(known.means);
  }
  const auto isPlain = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || std::string_view("-_.:+").find(c) != std::string::npos;
  };
  return name.size() <= kLongestName && std::all_of(name.begin(), name.end(), isPlain) ? ToUpperAscii(name) : "";
}

class Converter {
 public:
  explicit Converter(std::string_view charset) : handle_(iconv_open("UTF-8", std::string(charset).c_str())) {}
  ~Converter() {
    if (*this) iconv_close(handle_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  explicit operator bool() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  std::string Convert(std::string_view bytes) const {
    std::string text;
    char* from = const_cast<char*>(bytes.data());
    std::size_t left = bytes.size();
    while (left > 0) {
      char buffer[512];
      char* to = buffer;
      std::size_t room = sizeof buffer;
      const bool converted = iconv(handle_, &from, &left, &to, &room) != static_cast<std::size_t>(-1);
      const int error = errno;
      text.append(buffer, to);
      if (converted || error == E2BIG) continue;
      text += kReplacement;
      ++from, --left;
    }
    return text;
  }

 private:
  iconv_t handle_;
};

// The Japanese of mail as EUC, which knows the signs that vendors added: escapes switch between one byte a character
// and two, and two are the same as in EUC with the high bits set.
std::string EucOf(std::string_view mailJapanese) {
  std::string euc;
  enum { Single, Double, Kana } state = Single;
  for (std::size_t i = 0; i < mailJapanese.size(); ++i) {
    const char c = mailJapanese[i];
    const std::string_view escape = c == '\x1B' ? mailJapanese.substr(i + 1, 2) : std::string_view();
    if (escape == "$B" || escape == "$@" || escape == "(B" || escape == "(J" || escape == "(I") {
      state = escape[0] == '$' ? Double : escape == "(I" ? Kana : Single;
      i += 2;
    } else if (state == Single || static_cast<unsigned char>(c) <= 0x20) {
      euc += c;
    } else {
      if (state == Kana) euc += '\x8E';
      euc += static_cast<char>(c | '\x80');
    }
  }
  return euc;
}

bool IsBad(std::string_view bytes, std::size_t at, const Character& next) {
  return next.code == kReplacementCharacter && bytes.substr(at, next.length) != kReplacement;
}

// What is no UTF-8 is Western.
std::string Guessed(std::string_view bytes) {
  std::string text;
  const Converter western(kWestern);
  for (std::size_t at = 0; at < bytes.size();) {
    const Character next = CharacterAt(bytes, at);
    const std::string_view piece = bytes.substr(at, next.length);
    text += IsBad(bytes, at, next) ? western.Convert(piece) : std::string(piece);
    at += next.length;
  }
  return text;
}

}  // namespace

bool IsUtf8(std::string_view bytes) {
  for (std::size_t at = 0; at < bytes.size();) {
    const Character next = CharacterAt(bytes, at);
    if (IsBad(bytes, at, next)) return false;
    at += next.length;
  }
  return true;
}

std::string ToUtf8(std::string_view bytes, std::string_view charset) {
  if (IsAscii(bytes) && charset.empty()) return std::string(bytes);
  std::string means = Meaning(charset);
  if (means == kUtf8) return std::string(bytes);
  if (means == kMailJapanese) return Converter(kJapanese).Convert(EucOf(bytes));
  if (!means.empty()) {
    if (const Converter converter(means); converter) return converter.Convert(bytes);
  }
  return Guessed(bytes);
}

}  // namespace kalvo::mail
