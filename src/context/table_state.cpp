#include "context/table_state.h"

#include <algorithm>
#include <limits>

#include "context/parameters.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/owned.h"

namespace kalvo {

namespace {

constexpr std::string_view kNames[] = {kSortFieldParameter, kSortOrderParameter, kFirstRowParameter,
                                       kPageSizeParameter};

std::size_t PlaceOf(TableState::Parameter parameter) { return static_cast<std::size_t>(parameter); }

}  // namespace

void TableState::Start() {
  index_ = 0;
  others_.clear();
  counts_.fill(0);
  for (const std::string& key : Held(page_.request)->QueryKeys()) {
    const std::int32_t n = Held(page_.request)->QueryCount(key);
    if (!Count(key, n)) KeepOther(key, n);
  }
  address_.clear();
  // A request that is script may have ended the page while it was asked.
  if (page_.request && !page_.request->SeesCalls()) AppendAddress(address_);
}

void TableState::AppendAddress(std::string& out) const {
  Append(out, Held(page_.request)->ServerVariable("URL"), '?', others_);
}

// True for a parameter of the tables.
bool TableState::Count(std::string_view key, std::int32_t values) {
  for (std::size_t i = 0; i < counts_.size(); ++i) {
    if (!EqualsIgnoringCase(key, kNames[i])) continue;
    counts_[i] = ToInt16(static_cast<double>(values));
    return true;
  }
  return false;
}

void TableState::KeepOther(const std::string& key, std::int32_t values) {
  std::string value;
  for (std::int32_t i = 1; i <= values; ++i) {
    value.clear();
    // Before the key: a failing one leaves no half.
    Held(page_.server)->URLEncode(value, Held(page_.request)->QueryItem(key, i));
    Append(others_, others_.empty() ? "" : "&", key, '=', value);
  }
}

std::int16_t TableState::Next() {
  if (index_ == std::numeric_limits<std::int16_t>::max()) throw Overflow();
  return ++index_;
}

// ---- this table's values --------------------------------------------------------------------------------

std::string TableState::Text(Parameter parameter) const {
  const std::size_t place = PlaceOf(parameter);
  if (index_ > counts_[place]) return {};
  return Held(page_.request)->QueryItem(kNames[place], index_);
}

std::int16_t TableState::Number(Parameter parameter) const {
  const auto number = ParseNumber(Text(parameter));
  return number ? ToInt16(*number) : std::int16_t{0};
}

// ---- links that change this table's values --------------------------------------------------------------

// Positions never shift: one without a value is written as "Sort=".
void TableState::AppendParameter(std::string& out, std::string_view separator, std::string_view name,
                                 std::int16_t count, std::string_view value) const {
  const std::int32_t last = std::max(count, index_);
  for (std::int32_t i = 1; i <= last; ++i) {
    Append(out, separator, name, '=');
    if (i == index_) {
      Held(page_.server)->URLEncode(out, value);
    } else {
      Held(page_.server)->URLEncode(out, i <= count ? Held(page_.request)->QueryItem(name, i) : std::string());
    }
    separator = "&";
  }
}

void TableState::AppendUrl(std::string& out, const std::array<std::string_view, 4>& values) const {
  const auto request = Held(page_.request);
  address_.empty() ? AppendAddress(out) : Append(out, address_);
  std::string_view separator = others_.empty() ? "" : "&";
  for (std::size_t i = 0; i < counts_.size(); ++i) {
    AppendParameter(out, separator, kNames[i], counts_[i], values[i]);
    separator = "&";
  }
}

}  // namespace kalvo
