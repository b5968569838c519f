#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "kalvo/platform/live_mailbox.h"

namespace kalvo::mail {

enum class Totals : bool { No, Yes };
enum class Sorts : bool { No, Yes };

// A field of a kind of listing. Names are matched without regard to case.
struct ListingField {
  std::string_view name;
  Totals totals;
  Sorts sorts;
};

struct SortKey {
  std::size_t field;  // its position in `ListingItems::Fields`
  bool descending;
};

// The items behind a listing, numbered from 0 in the order that they have without a sort. Fields are named by
// their position in `Fields`.
class ListingItems {
 public:
  virtual ~ListingItems() = default;

  virtual std::span<const ListingField> Fields() const = 0;
  virtual std::int32_t Count() = 0;

  // A field of the item `upcoming.front()`. The rest of `upcoming` is what the listing shows after it, for items
  // that are fetched ahead.
  virtual Value Field(std::span<const std::int32_t> upcoming, std::size_t field) = 0;

  // The sum of a field with totals; the default reads every item.
  virtual std::int64_t Total(std::size_t field);

  // The items in the order of the keys, where the store sorts by itself; nothing: the listing sorts, reading
  // every item.
  virtual std::optional<std::vector<std::int32_t>> Order(std::span<const SortKey> keys);
};

// The listing of any kind of items. It keeps its items alive. Tables leave a field that fails empty; so that a store
// which fails among the rows is told of, the next `MoveNext` fails once as well, after it has moved.
class ItemListing : public Listing {
 public:
  explicit ItemListing(std::shared_ptr<ListingItems> items);

  void MoveFirst() override;
  void MoveNext() override;
  std::int32_t Count() override { return static_cast<std::int32_t>(order_.size()); }
  Value Field(std::string_view name) override;
  Value Total(std::string_view name) override;
  void ClearSortFields() override { keys_.clear(); }
  void AddSortField(std::string_view name, std::int32_t descending) override;
  void Sort() override;

 private:
  std::size_t FieldPosition(std::string_view name) const;

  std::shared_ptr<ListingItems> items_;
  std::vector<std::int32_t> order_;
  std::vector<SortKey> keys_;
  std::size_t position_ = 0;
  std::exception_ptr failure_;  // of a field since the last move
};

}  // namespace kalvo::mail
