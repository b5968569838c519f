#include "adapters/ranking/result_set.h"

#include <algorithm>
#include <compare>
#include <string>
#include <utility>

#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"

namespace kalvo::ranking {
namespace {

constexpr Field kSummed[] = {kMessages, kSpace, kMessageSize};

std::size_t Checked(std::int16_t field) {
  if (field < kFirstField || field > kLastField) throw SubscriptOutOfRange();
  return static_cast<std::size_t>(field);
}

// A value as it is sorted: nothing, a number, or a text in lower case.
struct SortKey {
  enum class Kind { Nothing, Number, Text } kind = Kind::Nothing;
  std::int64_t whole = 0;  // integers are compared exactly
  double number = 0;
  std::string text;
};

struct KeyOf {
  SortKey operator()(const Empty&) const { return {}; }
  SortKey operator()(const Null&) const { return {}; }
  SortKey operator()(bool truth) const { return Number(truth ? 1 : 0); }
  SortKey operator()(std::int32_t number) const { return Number(number); }
  SortKey operator()(std::int64_t number) const { return Number(number); }
  SortKey operator()(double number) const { return {SortKey::Kind::Number, 0, number, {}}; }
  SortKey operator()(const Date& date) const { return {SortKey::Kind::Number, 0, date.serial, {}}; }
  SortKey operator()(const std::string& text) const {
    if (text.empty()) return {};
    return {SortKey::Kind::Text, 0, 0, ToLower(text)};
  }
  SortKey operator()(const Bytes&) const { throw TypeMismatch(); }
  SortKey operator()(const std::shared_ptr<Object>&) const { throw TypeMismatch(); }

 private:
  static SortKey Number(std::int64_t number) {
    return {SortKey::Kind::Number, number, static_cast<double>(number), {}};
  }
};

bool Less(const SortKey& a, const SortKey& b) {
  if (a.kind != b.kind) return a.kind < b.kind;
  if (a.number != b.number) return a.number < b.number;
  if (a.whole != b.whole) return a.whole < b.whole;
  return a.text < b.text;
}

}  // namespace

void ResultSet::Clear() {
  rows_.clear();
  totals_ = {};
  MoveFirst();
}

void ResultSet::AddRow() { rows_.emplace_back(); }

void ResultSet::Set(std::int16_t field, kalvo::Value value) {
  if (rows_.empty()) throw ObjectNotSet();
  rows_.back()[Checked(field)] = std::move(value);
}

std::int32_t ResultSet::Count() { return static_cast<std::int32_t>(rows_.size()); }

void ResultSet::MoveFirst() {
  current_ = 0;
  onTotals_ = false;
}

void ResultSet::MoveNext() {
  onTotals_ = false;
  if (current_ < rows_.size()) ++current_;
}

void ResultSet::MoveTotals() {
  for (const Field field : kSummed) AddUp(field);
  onTotals_ = true;
}

void ResultSet::AddUp(std::int16_t column) {
  const auto field = static_cast<std::size_t>(column);
  totals_[field] = Empty{};
  std::int64_t sum = 0;
  for (const Row& row : rows_) {
    if (IsEmpty(row[field]) || IsNull(row[field])) continue;
    const auto* number = std::get_if<std::int64_t>(&row[field]);
    // Other loaders may have numbers of other types.
    const std::int64_t value = number ? *number : static_cast<std::int64_t>(ToDouble(row[field]));
    if (__builtin_add_overflow(sum, value, &sum)) throw Overflow();
    totals_[field] = sum;
  }
}

kalvo::Value ResultSet::Value(std::int16_t column) {
  static const kalvo::Value kNothing = std::string();
  if (column < kFirstField || column > kLastField) return kNothing;
  if (!onTotals_ && current_ >= rows_.size()) return kNothing;
  const kalvo::Value& value = (onTotals_ ? totals_ : rows_[current_])[static_cast<std::size_t>(column)];
  return IsEmpty(value) ? kNothing : value;
}

void ResultSet::Sort(std::int16_t column, std::int32_t ascending) {
  const std::size_t field = Checked(column);
  std::vector<std::pair<SortKey, std::size_t>> order;
  order.reserve(rows_.size());
  for (std::size_t i = 0; i < rows_.size(); ++i) order.emplace_back(std::visit(KeyOf{}, rows_[i][field]), i);
  std::stable_sort(order.begin(), order.end(), [&](const auto& a, const auto& b) {
    return ascending != 0 ? Less(a.first, b.first) : Less(b.first, a.first);
  });
  std::vector<Row> sorted;
  sorted.reserve(rows_.size());
  for (const auto& [key, place] : order) sorted.push_back(std::move(rows_[place]));
  rows_ = std::move(sorted);
  MoveFirst();
}

}  // namespace kalvo::ranking
