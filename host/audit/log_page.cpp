#include "host/audit/log_page.h"

#include <algorithm>

#include "host/audit/json.h"
#include "host/audit/reading.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/error.h"

namespace kalvo::audit {
namespace {

constexpr std::int32_t kMostLines = 500;
constexpr std::size_t kMostFiles = 4;  // a page has a time limit; the command looks into all
constexpr std::int32_t kInvalidCall = 5;

}  // namespace

std::string LogPage::Lines(std::string_view event, std::string_view user, std::int32_t skipped, std::int32_t count) {
  Filter filter;
  filter.event = EventNamed(event);
  if (!filter.event && !event.empty()) throw Error(kInvalidCall, "There is no event of that name.");
  filter.user = user;
  const auto records = Newest(folder_, filter, static_cast<std::size_t>(std::clamp(count, 0, kMostLines)),
                              static_cast<std::size_t>(std::max(skipped, 0)), kMostFiles);
  std::string list = "[";
  for (const Record& record : records) Append(list, list.size() > 1 ? "," : "", LineOf(record));
  return list + "]";
}

std::string LogPage::Events() {
  std::string list = "[";
  for (const std::string_view name : EventNames()) {
    if (list.size() > 1) list += ',';
    AppendJsonText(list, name);
  }
  return list + "]";
}

}  // namespace kalvo::audit
