// The sort and paging state of every table on the page, as the query string carries it.

#include <algorithm>

#include "context/parameters.h"
#include "kalvo/context.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/owned.h"
#include "kalvo/platform/page_host.h"

namespace kalvo {

// ---- this table's values --------------------------------------------------------------------------------

std::string Context::TableInformation(std::string_view name, std::int16_t count) const {
  if (tableIndex_ > count) return {};
  return GetRequest()->QueryItem(name, tableIndex_);
}

std::int16_t Context::TableNumber(std::string_view name, std::int16_t count) const {
  const std::string text = TableInformation(name, count);
  const auto number = ParseNumber(text);
  return number ? ToInt16(*number) : std::int16_t{0};
}

std::string Context::TableSortFieldInformation() const {
  return TableInformation(kSortFieldParameter, sortFieldCount_);
}

std::string Context::TableSortOrderInformation() const {
  return TableInformation(kSortOrderParameter, sortOrderCount_);
}

std::int16_t Context::TableFirstRowInformation() const { return TableNumber(kFirstRowParameter, firstRowCount_); }

std::int16_t Context::TablePageSizeInformation() const { return TableNumber(kPageSizeParameter, pageSizeCount_); }

// ---- links that change this table's values --------------------------------------------------------------

std::string Context::TableURLParameter(std::string_view szAmp, std::string_view szSortParameterName,
                                       std::int16_t nSortCount, std::string_view szSortString) const {
  return Built(
      [&](std::string& out) { AppendTableURLParameter(out, szAmp, szSortParameterName, nSortCount, szSortString); });
}

// Positions never shift: one without a value is written as "Sort=".
void Context::AppendTableURLParameter(std::string& out, std::string_view separator, std::string_view name,
                                      std::int16_t count, std::string_view value) const {
  const std::int32_t last = std::max(count, tableIndex_);
  for (std::int32_t i = 1; i <= last; ++i) {
    Append(out, separator, name, '=');
    if (i == tableIndex_) {
      Held(server_)->URLEncode(out, value);
    } else {
      Held(server_)->URLEncode(out, i <= count ? GetRequest()->QueryItem(name, i) : std::string());
    }
    separator = "&";
  }
}

std::string Context::TableURL(std::string_view szSortFieldString, std::string_view szSortOrderString,
                              std::string_view szFirstRowString, std::string_view szPageSizeString) const {
  return Built([&](std::string& out) {
    AppendTableURL(out, szSortFieldString, szSortOrderString, szFirstRowString, szPageSizeString);
  });
}

void Context::AppendTableURL(std::string& out, std::string_view szSortFieldString, std::string_view szSortOrderString,
                             std::string_view szFirstRowString, std::string_view szPageSizeString) const {
  Append(out, GetRequest()->ServerVariable("URL"), '?', urlParameters_);
  const std::string_view first = urlParameters_.empty() ? "" : "&";
  AppendTableURLParameter(out, first, kSortFieldParameter, sortFieldCount_, szSortFieldString);
  AppendTableURLParameter(out, "&", kSortOrderParameter, sortOrderCount_, szSortOrderString);
  AppendTableURLParameter(out, "&", kFirstRowParameter, firstRowCount_, szFirstRowString);
  AppendTableURLParameter(out, "&", kPageSizeParameter, pageSizeCount_, szPageSizeString);
}

}  // namespace kalvo
