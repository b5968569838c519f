#pragma once

#include <string_view>

namespace kalvo {

// The words that tables read from an address and write into it.
inline constexpr std::string_view kSortFieldParameter = "Sort";
inline constexpr std::string_view kSortOrderParameter = "SortOrder";
inline constexpr std::string_view kFirstRowParameter = "First";
inline constexpr std::string_view kPageSizeParameter = "PageSize";
inline constexpr std::string_view kAscendingSort = "ASC";
inline constexpr std::string_view kDescendingSort = "DESC";

}  // namespace kalvo
