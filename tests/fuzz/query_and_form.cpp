#include <algorithm>
#include <string>

#include "fuzz/targets.h"
#include "host/script/text/named_values.h"
#include "host/script/text/text.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::test {
namespace {

void HoldsNames(const host::NamedValues& names, std::size_t mostValues) {
  std::size_t values = 0;
  for (const std::string& key : names.Keys()) {
    Require(!names.Of(key).empty(), "a name that is listed has a value");
    Require(&names.Of(key) == &names.Of(ToLower(key)), "a name is found whatever its case");
    values += names.Of(key).size();
  }
  Require(values <= mostValues, "there is at most a value for each part");
}

}  // namespace

void QueryAndForm(std::string_view bytes) {
  Require(host::UrlDecoded(bytes).size() <= 3 * bytes.size(), "decoding makes a byte at most one U+FFFD");
  const auto parts = static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '&')) + 1;
  HoldsNames(host::NamedValues::FromQuery(bytes), parts);
  const auto cookies = static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), ';')) + 1;
  HoldsNames(host::NamedValues::FromCookies(bytes), cookies);
}

}  // namespace kalvo::test
