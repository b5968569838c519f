#include "host/audit/record.h"

#include <sodium.h>

#include <charconv>
#include <chrono>
#include <ctime>
#include <stdexcept>

#include "host/audit/json.h"
#include "host/script/text/text.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/text_tools.h"
#include "kalvo/platform/utf8.h"

namespace kalvo::audit {
namespace {

constexpr std::string_view kCut = "...";

// At most so many bytes, cut between two characters.
std::string Shortened(std::string_view text) {
  std::string whole = host::WellFormed(text.substr(0, kLongestValue + 4));
  if (text.size() <= kLongestValue && whole.size() <= kLongestValue) return whole;
  std::size_t end = kLongestValue - kCut.size();
  while (end > 0 && (static_cast<unsigned char>(whole[end]) & 0xC0) == 0x80) --end;
  return whole.substr(0, end).append(kCut);
}

void AppendField(std::string& out, std::string_view name, std::string_view value) {
  if (out.back() != '{') out += ',';
  AppendJsonText(out, name);
  out += ':';
  AppendJsonText(out, value);
}

// Takes a line apart from its front. Once something is not as it should be, nothing fits any more.
class Scanner {
 public:
  explicit Scanner(std::string_view line) : rest_(line) {}

  bool Good() const { return good_; }
  bool AtEnd() const { return rest_.empty(); }
  bool Sees(char character) const { return good_ && rest_.starts_with(character); }

  void Expect(std::string_view text) {
    good_ = good_ && rest_.starts_with(text);
    if (good_) rest_.remove_prefix(text.size());
  }

  std::int64_t Number() {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), number);
    good_ = good_ && error == std::errc() && number > 0;
    if (good_) rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
    return number;
  }

  std::string Quoted() {
    std::string text;
    Expect("\"");
    while (good_ && !rest_.empty() && rest_.front() != '"') {
      if (rest_.front() == '\\') {
        rest_.remove_prefix(1);
        TakeEscape(text);
      } else {
        text += rest_.front();
        rest_.remove_prefix(1);
      }
    }
    Expect("\"");
    return text;
  }

  std::string Field(std::string_view name) {
    Expect(",\"");
    Expect(name);
    Expect("\":");
    return Quoted();
  }

 private:
  void TakeEscape(std::string& text) {
    if (!rest_.starts_with('u')) {
      good_ = !rest_.empty();
      if (!good_) return;
      text += rest_.front();
      rest_.remove_prefix(1);
      return;
    }
    unsigned unit = 0;
    const char* digits = rest_.data() + 1;
    good_ = rest_.size() > 4 && std::from_chars(digits, digits + 4, unit, 16).ptr == digits + 4;
    if (!good_) return;
    rest_.remove_prefix(5);
    AppendCharacter(text, unit);
  }

  std::string_view rest_;
  bool good_ = true;
};

}  // namespace

std::string_view Record::Detail(std::string_view name) const {
  for (const auto& [key, value] : details) {
    if (key == name) return value;
  }
  return "";
}

std::string HashOf(std::string_view text) {
  if (sodium_init() < 0) throw std::runtime_error("the cryptography library cannot be used");
  std::uint8_t bytes[crypto_hash_sha256_BYTES];
  crypto_hash_sha256(bytes, reinterpret_cast<const unsigned char*>(text.data()), text.size());
  return Hexadecimal(bytes);
}

std::string Now() {
  std::timespec now{};
  std::timespec_get(&now, TIME_UTC);
  std::tm calendar{};
  gmtime_r(&now.tv_sec, &calendar);
  char text[32];
  std::string out(text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S.", &calendar));
  const auto milliseconds = static_cast<int>(now.tv_nsec / 1'000'000);
  Append(out, milliseconds / 100, milliseconds / 10 % 10, milliseconds % 10, 'Z');
  return out;
}

std::string LineOf(const Record& record) {
  std::string line;
  Append(line, "{\"number\":", record.number);
  AppendField(line, "time", record.time);
  AppendField(line, "event", NameOf(record.event));
  AppendField(line, "user", Shortened(record.visitor.user));
  AppendField(line, "address", Shortened(record.visitor.address));
  Append(line, ",\"details\":{");
  std::size_t count = 0;
  for (const auto& [name, value] : record.details) {
    if (++count > kMostDetails) break;
    AppendField(line, name, Shortened(value));
  }
  Append(line, '}');
  AppendField(line, "previous", record.previous);
  const std::string hash = HashOf(line);
  AppendField(line, "hash", hash);
  Append(line, '}');
  return line;
}

std::optional<Record> ReadLine(std::string_view line) {
  if (line.size() > kLongestLine) return std::nullopt;
  Scanner scanner(line);
  Record record;
  scanner.Expect("{\"number\":");
  record.number = scanner.Number();
  record.time = scanner.Field("time");
  const auto event = EventNamed(scanner.Field("event"));
  record.visitor.user = scanner.Field("user");
  record.visitor.address = scanner.Field("address");
  scanner.Expect(",\"details\":{");
  while (scanner.Good() && !scanner.Sees('}')) {
    if (!record.details.empty()) scanner.Expect(",");
    std::string name = scanner.Quoted();
    scanner.Expect(":");
    std::string value = scanner.Quoted();
    record.details.emplace_back(std::move(name), std::move(value));
  }
  scanner.Expect("}");
  record.previous = scanner.Field("previous");
  record.hash = scanner.Field("hash");
  scanner.Expect("}");
  if (!scanner.Good() || !scanner.AtEnd() || !event) return std::nullopt;
  record.event = *event;
  if (LineOf(record) != line) return std::nullopt;
  return record;
}

}  // namespace kalvo::audit
