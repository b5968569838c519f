#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/database.h"

namespace kalvo {

std::string_view TextOf(const StoredValue& value, const Locale& locale, std::string& scratch) {
  scratch.clear();
  switch (value.kind) {
    case StoredValue::Kind::Null: return {};
    case StoredValue::Kind::Boolean: return value.integer != 0 ? "True" : "False";
    case StoredValue::Kind::Text:
    case StoredValue::Kind::Binary: return {value.bytes, value.size};
    case StoredValue::Kind::Integer: Append(scratch, value.integer); break;
    case StoredValue::Kind::Double: AppendDouble(scratch, value.number); break;
    case StoredValue::Kind::Date: AppendDate(scratch, Date{value.number}, locale); break;
  }
  return scratch;
}

}  // namespace kalvo
