#include "host/script/late_binding/collections.h"

#include <memory>

#include "kalvo/platform/error.h"

namespace kalvo::host {

std::string ValueList::Item(std::int32_t i) const {
  if (i < 1 || i > Count()) throw SubscriptOutOfRange();
  return values_[static_cast<std::size_t>(i) - 1];
}

Value NameCollection::Item(std::string_view name) const {
  if (!lists_) return JoinedValues(names_.Of(name));
  return std::make_shared<ValueList>(names_.Of(name));
}

}  // namespace kalvo::host
