#include "kalvo/platform/conversion.h"

#include "kalvo/platform/append.h"
#include "kalvo/platform/error.h"

namespace kalvo {

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

}  // namespace kalvo
