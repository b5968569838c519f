#pragma once

#include <optional>
#include <string_view>

#include "kalvo/platform/value.h"

namespace kalvo::sql {

// A date in the ISO form, with or without a time: "2024-02-03", "2024-02-03 10:00", "2024-02-03T10:00:00.5".
// Fractions of a second are dropped. Nothing for any other text.
std::optional<Date> ParseIsoDate(std::string_view text);

// Exactly "2024-02-03 10:00:00", the form in which a database without dates of its own gives a computed one.
std::optional<Date> ParseIsoDateTime(std::string_view text);

}  // namespace kalvo::sql
