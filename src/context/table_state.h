#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "context/objects_of_page.h"

namespace kalvo {

// The sort and paging state of every table on a page, as the query string carries it: "Sort=Name&Sort=Date" is the
// state of the page's first two tables.
class TableState {
 public:
  enum class Parameter : std::uint8_t { Sort, SortOrder, First, PageSize };

  explicit TableState(const PageObjects& page) : page_(page) {}

  // Counts the values that the request has, and keeps every other parameter for the tables' links. No table is counted
  // yet. Fails with 6 for more than 32767 values.
  void Start();

  // The number of the table being built; 0 before the first. `Next` counts one more, and fails with 6 after 32767.
  std::int16_t Index() const { return index_; }
  std::int16_t Next();

  // This table's value: "" where it has none, 0 where it has none or one that is not a number.
  std::string Text(Parameter parameter) const;
  std::int16_t Number(Parameter parameter) const;

  // The values of a parameter for the first `count` tables, `value` at the place of this one.
  void AppendParameter(std::string& out, std::string_view separator, std::string_view name, std::int16_t count,
                       std::string_view value) const;

  // The page's own address with this table's values replaced, each by its place in `Parameter`.
  void AppendUrl(std::string& out, const std::array<std::string_view, 4>& values) const;

 private:
  bool Count(std::string_view key, std::int32_t values);
  void KeepOther(const std::string& key, std::int32_t values);
  void AppendAddress(std::string& out) const;

  const PageObjects& page_;
  std::int16_t index_ = 0;
  std::string others_;   // the other parameters, encoded
  std::string address_;  // the page's own, with them; "" where the request sees who asks for it
  std::array<std::int16_t, 4> counts_{};
};

}  // namespace kalvo
