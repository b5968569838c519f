#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "adapters/mail/message_scan.h"

namespace kalvo::mail {

// What the head of a message says of it. Texts are cleaned.
struct HeadTexts {
  std::string subject, sender;
  std::optional<std::int64_t> sent;  // seconds since 1970, UTC
};

// The charset of bytes beyond ASCII in a field that names none; may answer "".
using CharsetFor = std::function<std::string_view(std::string_view field)>;

// The one reader of heads, for every store: a message is shown alike wherever it lies.
HeadTexts ReadHead(const Head& head, const CharsetFor& charset);

// The charset that a Content-Type field names; "" for none.
std::string CharsetIn(std::string_view contentType);

// Makes the library that reads MIME ready; at any time, from any thread.
void StartMime();

}  // namespace kalvo::mail
