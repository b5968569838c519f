#pragma once

#include <cstdint>

namespace kalvo {

inline constexpr std::int64_t kDefaultPageSize = 50;
inline constexpr std::int64_t kLargestPageSize = 1000;

// Which rows of a report one page shows. Rows count from 1; whatever a source says that it has, the arithmetic stays
// within 64 bits.
struct Paging {
  std::int64_t records = 0;
  std::int64_t size = kDefaultPageSize;
  std::int64_t first = 1;
  std::int64_t last = 0;

  // `requestedSize` and `requestedFirst` as the request has them: 0 where it has none. A negative size is the
  // largest, a negative first row means the last page, which starts below 1 when there is less than a page.
  static constexpr Paging Of(std::int64_t records, std::int64_t requestedSize, std::int64_t requestedFirst) {
    Paging paging;
    paging.records = records;
    paging.size = requestedSize < 0 ? kLargestPageSize : requestedSize == 0 ? kDefaultPageSize : requestedSize;
    paging.first = requestedFirst < 0 ? records - paging.size + 1 : requestedFirst == 0 ? 1 : requestedFirst;
    paging.last = paging.first + paging.size - 1;
    // A remainder of less than a quarter page is shown here instead of on a page of its own.
    const bool beyond = paging.last > records;
    if (beyond || (records - paging.last) * 4 < paging.size) paging.last = records;
    return paging;
  }

  constexpr bool StartsAtFirst() const { return first == 1; }
  constexpr bool EndsAtLast() const { return last == records; }
  constexpr bool IsPaged() const { return !StartsAtFirst() || !EndsAtLast(); }
};

}  // namespace kalvo
