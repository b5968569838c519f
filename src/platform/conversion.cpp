#include "platform/conversion.h"

#include <algorithm>

#include "platform/append.h"
#include "platform/error.h"

namespace kalvo {

namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

}  // namespace

void AppendText(std::string& out, const Value& value, const Locale& locale) {
  struct Writer {
    std::string& out;
    const Locale& locale;
    void operator()(const Empty&) const {}
    void operator()(const Null&) const {}
    void operator()(bool truth) const { out += truth ? "True" : "False"; }
    void operator()(std::int32_t number) const { Append(out, number); }
    void operator()(std::int64_t number) const { Append(out, number); }
    void operator()(double number) const { AppendDouble(out, number); }
    void operator()(const Date& date) const { AppendDate(out, date, locale); }
    void operator()(const std::string& text) const { out += text; }
    void operator()(const Bytes& bytes) const { out.append(bytes.begin(), bytes.end()); }
    void operator()(const std::shared_ptr<Object>&) const { throw MemberNotSupported(); }
  };
  std::visit(Writer{out, locale}, value);
}

std::string ToText(const Value& value, const Locale& locale) {
  return Built([&](std::string& out) { AppendText(out, value, locale); });
}

std::string ToLower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
  return lower;
}

std::string ToUpper(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), Upper);
  return upper;
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return Lower(x) == Lower(y); });
}

}  // namespace kalvo
