#include "adapters/mail/held_message.h"

#include <algorithm>
#include <charconv>

#include "base/percent.h"
#include "base/random_bytes.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/text_tools.h"

namespace kalvo::mail {

namespace {

constexpr std::string_view kKind = "held=1";  // the first word of every record
constexpr std::size_t kIdBytes = 16;

// How a field is written and read back.
using Text = std::string HeldMessage::*;
using Number = std::int64_t HeldMessage::*;
using Moment = std::optional<std::int64_t> HeldMessage::*;

// clang-format off
constexpr struct { std::string_view key; Text field; } kTexts[] = {
  {"id",         &HeldMessage::id},
  {"server",     &HeldMessage::server},
  {"mailbox",    &HeldMessage::mailbox},
  {"folder-key", &HeldMessage::folderKey},
  {"name",       &HeldMessage::name},
  {"flags",      &HeldMessage::flags},
  {"subject",    &HeldMessage::subject},
  {"sender",     &HeldMessage::sender},
};
constexpr struct { std::string_view key; Moment field; } kMoments[] = {
  {"sent",       &HeldMessage::sent},
  {"received",   &HeldMessage::received},
};
// clang-format on

bool IsPlain(char c) { return c > ' ' && c < 0x7F && c != '%' && c != '/' && c != ';'; }

void AppendEncoded(std::string& out, std::string_view text) {
  for (const char c : text) {
    if (IsPlain(c)) {
      out += c;
      continue;
    }
    base::AppendPercent(out, c);
  }
}

std::optional<std::int64_t> ReadNumber(std::string_view text) {
  std::int64_t number = 0;
  const char* end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number);
  return read.ec == std::errc{} && read.ptr == end ? std::optional(number) : std::nullopt;
}

bool ReadPath(std::string_view text, FolderPath& path) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('/'), text.size());
    auto name = base::FromPercent(text.substr(0, end));
    if (!name) return false;
    path.push_back(std::move(*name));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return true;
}

// False for a value that cannot be read; unknown keys are passed over, so that a later version may add some.
bool ReadField(std::string_view key, std::string_view value, HeldMessage& message) {
  const auto text = [&](std::string& field) {
    auto plain = base::FromPercent(value);
    if (plain) field = std::move(*plain);
    return plain.has_value();
  };
  const auto number = [&](auto& field) {
    const auto read = ReadNumber(value);
    if (read) field = *read;
    return read.has_value();
  };
  for (const auto& each : kTexts) {
    if (each.key == key) return text(message.*each.field);
  }
  for (const auto& each : kMoments) {
    if (each.key == key) return number(message.*each.field);
  }
  if (key == "folder") return ReadPath(value, message.folder);
  if (key == "size") return number(message.size);
  if (key == "by") return text(message.deletion.who);
  if (key == "when") return number(message.deletion.when);
  return true;
}

}  // namespace

std::string WriteHeldRecord(const HeldMessage& message) {
  std::string record(kKind);
  const auto text = [&](std::string_view key, std::string_view value) {
    Append(record, ' ', key, '=');
    AppendEncoded(record, value);
  };
  const auto number = [&](std::string_view key, std::int64_t value) { Append(record, ' ', key, '=', value); };
  for (const auto& each : kTexts) text(each.key, message.*each.field);
  for (const auto& each : kMoments) {
    if (message.*each.field) number(each.key, *(message.*each.field));
  }
  number("size", message.size);
  text("by", message.deletion.who);
  number("when", message.deletion.when);
  Append(record, " folder=");
  for (const std::string& name : message.folder) {
    AppendEncoded(record, name);
    record += '/';
  }
  Append(record, " end=1");
  return record;
}

std::optional<HeldMessage> ReadHeldRecord(std::string_view record) {
  HeldMessage message;
  bool first = true, whole = false;
  while (!record.empty()) {
    const std::size_t end = std::min(record.find(' '), record.size());
    const std::string_view word = record.substr(0, end);
    record.remove_prefix(std::min(end + 1, record.size()));
    if (first && word != kKind) return std::nullopt;
    first = false;
    const std::size_t equals = word.find('=');
    if (whole || equals == std::string::npos) return std::nullopt;
    whole = word == "end=1";
    if (!ReadField(word.substr(0, equals), word.substr(equals + 1), message)) return std::nullopt;
  }
  if (!whole || !IsHeldId(message.id)) return std::nullopt;
  return message;
}

std::string NewHeldId() { return base::RandomName(kIdBytes); }

bool IsHeldId(std::string_view text) { return text.size() == 2 * kIdBytes && IsHexadecimal(text); }

}  // namespace kalvo::mail
