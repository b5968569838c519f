#include "adapters/mail/item_listing.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <utility>
#include <variant>

#include "adapters/mail/errors.h"
#include "adapters/mail/sizes.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::mail {

namespace {

// What an item is sorted by: nothing first, then numbers, then texts without regard to case.
using Key = std::variant<std::monostate, double, std::string>;

Key KeyOf(Value value) {
  if (IsEmpty(value) || IsNull(value)) return std::monostate{};
  if (auto* text = std::get_if<std::string>(&value)) return ToLower(*text);
  return ToDouble(value);
}

}  // namespace

std::int64_t ListingItems::Total(std::size_t field) {
  std::vector<std::int32_t> all(static_cast<std::size_t>(Count()));
  std::iota(all.begin(), all.end(), 0);
  std::int64_t total = 0;
  for (std::span<const std::int32_t> rest(all); !rest.empty(); rest = rest.subspan(1)) {
    const Value value = Field(rest, field);
    if (const auto* number = std::get_if<std::int64_t>(&value)) total = SizeSum(total, *number);
  }
  return total;
}

std::optional<std::vector<std::int32_t>> ListingItems::Order(std::span<const SortKey>) { return std::nullopt; }

ItemListing::ItemListing(std::shared_ptr<ListingItems> items)
    : items_(std::move(items)), order_(static_cast<std::size_t>(items_->Count())) {
  std::iota(order_.begin(), order_.end(), 0);
}

void ItemListing::MoveFirst() {
  position_ = 0;
  failure_ = nullptr;
}

void ItemListing::MoveNext() {
  if (position_ < order_.size()) ++position_;
  if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

Value ItemListing::Field(std::string_view name) {
  const std::size_t field = FieldPosition(name);
  if (position_ >= order_.size()) return std::string();
  try {
    return items_->Field(std::span<const std::int32_t>(order_).subspan(position_), field);
  } catch (const Error&) {
    failure_ = std::current_exception();
    throw;
  }
}

Value ItemListing::Total(std::string_view name) {
  const std::size_t field = FieldPosition(name);
  if (items_->Fields()[field].totals == Totals::No) throw UnknownField(name);
  return items_->Total(field);
}

void ItemListing::AddSortField(std::string_view name, std::int32_t descending) {
  const std::size_t field = FieldPosition(name);
  if (items_->Fields()[field].sorts == Sorts::No) throw UnknownField(name);
  keys_.push_back({field, descending != 0});
}

void ItemListing::Sort() {
  MoveFirst();
  std::iota(order_.begin(), order_.end(), 0);
  if (keys_.empty()) return;
  if (auto order = items_->Order(keys_)) {
    order_ = std::move(*order);
    return;
  }
  // The last key first: each pass is stable, so the first key decides in the end.
  const std::vector<std::int32_t> all = order_;
  for (auto key = keys_.rbegin(); key != keys_.rend(); ++key) {
    std::vector<Key> of(all.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
      of[i] = KeyOf(items_->Field(std::span<const std::int32_t>(all).subspan(i), key->field));
    }
    const auto before = [&](std::int32_t a, std::int32_t b) {
      return of[static_cast<std::size_t>(a)] < of[static_cast<std::size_t>(b)];
    };
    if (key->descending) {
      std::stable_sort(order_.begin(), order_.end(), [&](std::int32_t a, std::int32_t b) { return before(b, a); });
    } else {
      std::stable_sort(order_.begin(), order_.end(), before);
    }
  }
}

std::size_t ItemListing::FieldPosition(std::string_view name) const {
  const auto fields = items_->Fields();
  const auto found = std::find_if(fields.begin(), fields.end(),
                                  [&](const ListingField& field) { return EqualsIgnoringCase(field.name, name); });
  if (found == fields.end()) throw UnknownField(name);
  return static_cast<std::size_t>(found - fields.begin());
}

}  // namespace kalvo::mail
