#pragma once

#include <string>
#include <string_view>

#include "database/sample/random.h"
#include "database/sample/row_writer.h"

namespace kalvo::sample {

// A whole message as it lies in a store. Most are what people write; every so often one is what programs make of
// it: broken headers, odd encodings, no date, no subject, a subject of thousands of characters.
std::string MailText(Random& random, std::string_view recipient, Moment received);

}  // namespace kalvo::sample
