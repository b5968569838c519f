#include "adapters/sql/iso_date.h"

#include "kalvo/platform/conversion.h"

namespace kalvo::sql {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// '0' in a form is any digit, every other character itself.
bool HasForm(std::string_view text, std::string_view form) {
  if (text.size() != form.size()) return false;
  for (std::size_t i = 0; i < form.size(); ++i) {
    if (form[i] == '0' ? !IsDigit(text[i]) : text[i] != form[i]) return false;
  }
  return true;
}

int Digits(std::string_view text, std::size_t from, std::size_t count) {
  int number = 0;
  for (const char c : text.substr(from, count)) number = number * 10 + (c - '0');
  return number;
}

bool IsFraction(std::string_view text) {
  if (text.size() < 2 || text[0] != '.') return text.empty();
  for (const char c : text.substr(1)) {
    if (!IsDigit(c)) return false;
  }
  return true;
}

}  // namespace

std::optional<Date> ParseIsoDate(std::string_view text) {
  constexpr std::size_t kDate = 10, kSeconds = 19;
  if (!HasForm(text.substr(0, kDate), "0000-00-00")) return {};
  const int year = Digits(text, 0, 4), month = Digits(text, 5, 2), day = Digits(text, 8, 2);
  if (text.size() == kDate) return MakeDate(year, month, day);

  if (text[kDate] != ' ' && text[kDate] != 'T') return {};
  const auto time = text.substr(kDate + 1);
  if (HasForm(time, "00:00")) return MakeDate(year, month, day, Digits(time, 0, 2), Digits(time, 3, 2));
  if (!HasForm(time.substr(0, kSeconds - kDate - 1), "00:00:00") || !IsFraction(text.substr(kSeconds))) return {};
  return MakeDate(year, month, day, Digits(time, 0, 2), Digits(time, 3, 2), Digits(time, 6, 2));
}

std::optional<Date> ParseIsoDateTime(std::string_view text) {
  if (!HasForm(text, "0000-00-00 00:00:00")) return {};
  return ParseIsoDate(text);
}

}  // namespace kalvo::sql
