#include "host/edge/request_limits.h"

#include <algorithm>
#include <string_view>

#include "host/script/page/page_request.h"
#include "host/script/text/named_values.h"
#include "host/script/text/url_parts.h"
#include "kalvo/platform/append.h"

namespace kalvo::edge {
namespace {

// The parameters of an encoded text; empty parts are none.
std::size_t PartsOf(std::string_view text) {
  std::size_t parts = 0;
  host::ForEachPart(text, '&', [&](std::string_view) { ++parts; });
  return parts;
}

bool RepeatsAKeyTooOften(std::string_view query) {
  const host::NamedValues values = host::NamedValues::FromQuery(query);
  return std::any_of(values.Keys().begin(), values.Keys().end(),
                     [&](const std::string& key) { return values.Of(key).size() > kMostValues; });
}

std::string AtMost(std::string_view what, std::size_t most, std::string_view unit) {
  return Built([&](std::string& out) { Append(out, what, " at most ", most, ' ', unit, '.'); });
}

}  // namespace

std::optional<std::string> BeyondLimits(const host::PageRequest& request) {
  const std::string& query = request.queryString;
  if (query.size() > kLongestQuery) return AtMost("The query of an address has", kLongestQuery, "bytes");
  if (PartsOf(query) > kMostParameters) return AtMost("The query of an address has", kMostParameters, "parameters");
  if (RepeatsAKeyTooOften(query)) return AtMost("A parameter of an address has", kMostValues, "values");
  if (PartsOf(request.form) > kMostFields) return AtMost("A form has", kMostFields, "fields");
  return std::nullopt;
}

}  // namespace kalvo::edge
