#include "kalvo/platform/encoding.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace kalvo {
namespace {

std::string Html(std::string_view text) {
  std::string out = "before ";
  AppendHtmlEncoded(out, text);
  return out.substr(7);
}

std::string Url(std::string_view text) {
  std::string out = "before ";
  AppendUrlEncoded(out, text);
  return out.substr(7);
}

TEST(Encoding, WritesTextForHtml) {
  const struct {
    const char* why;
    std::string_view text, encoded;
  } kCases[] = {
      {"nothing", "", ""},
      {"the four bytes", "&<>\"", "&amp;&lt;&gt;&quot;"},
      {"an apostrophe and other bytes stay", "it's \xC3\xAB \t\r\n", "it's \xC3\xAB \t\r\n"},
      {"at the edge of a block", "0123456789abcde<f", "0123456789abcde&lt;f"},
      {"behind a block", "0123456789abcdef\"", "0123456789abcdef&quot;"},
  };
  for (const auto& c : kCases) EXPECT_EQ(Html(c.text), c.encoded) << c.why;
}

TEST(Encoding, WritesTextForAQueryString) {
  const struct {
    const char* why;
    std::string_view text, encoded;
  } kCases[] = {
      {"nothing", "", ""},
      {"letters and digits stay", "azAZ09", "azAZ09"},
      {"their neighbours in the alphabet do not", "/:@[`{", "%2F%3A%40%5B%60%7B"},
      {"a blank", "a b", "a+b"},
      {"what other encoders keep", "a.b-c_d~", "a%2Eb%2Dc%5Fd%7E"},
      {"bytes above 127", "\xC3\xAB\xFF", "%C3%AB%FF"},
      {"a zero byte", std::string_view("\0", 1), "%00"},
      {"at the edge of a block", "0123456789abcde f", "0123456789abcde+f"},
  };
  for (const auto& c : kCases) EXPECT_EQ(Url(c.text), c.encoded) << c.why;
}

// One byte after the other, as a reader of the rule would write it.
std::string HtmlByBytes(std::string_view text) {
  std::string out;
  for (const char c : text) {
    const std::string_view changed = c == '&'   ? "&amp;"
                                     : c == '<' ? "&lt;"
                                     : c == '>' ? "&gt;"
                                     : c == '"' ? "&quot;"
                                                : "";
    changed.empty() ? out += c : out += changed;
  }
  return out;
}

std::string UrlByBytes(std::string_view text) {
  std::string out;
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if ((c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z')) {
      out += c;
    } else if (c == ' ') {
      out += '+';
    } else {
      constexpr char kDigits[] = "0123456789ABCDEF";
      out += {'%', kDigits[code / 16], kDigits[code % 16]};
    }
  }
  return out;
}

TEST(Encoding, BlocksGiveTheBytesThatOneByteAfterTheOtherGives) {
  std::mt19937 random(7);
  for (int i = 0; i < 20'000; ++i) {
    // A text of its own size, so that a reader behind its end is found; one byte in `often` is any byte.
    std::vector<char> text(random() % 70);
    const unsigned often = 1 + random() % 20;
    for (char& c : text) c = static_cast<char>(random() % often == 0 ? random() % 256 : 'a' + random() % 26);
    const std::string_view view(text.data(), text.size());
    ASSERT_EQ(Html(view), HtmlByBytes(view));
    ASSERT_EQ(Url(view), UrlByBytes(view));
  }
}

TEST(Encoding, LongTextsGrowNoMoreThanTheyHaveTo) {
  EXPECT_EQ(Html(std::string(1000, '"')), HtmlByBytes(std::string(1000, '"')));
  EXPECT_EQ(Url(std::string(1000, '%')), UrlByBytes(std::string(1000, '%')));
}

}  // namespace
}  // namespace kalvo
