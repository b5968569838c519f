#pragma once

#include <string>
#include <string_view>

#include "host/script/engine/kalvo_duktape.h"

namespace kalvo::host {

// Leaves a text on the stack; ill-formed UTF-8 becomes U+FFFD.
void PushText(duk_context* context, std::string_view utf8);

// The text of a string value on the stack; "" for anything else.
std::string TextAt(duk_context* context, duk_idx_t index);

}  // namespace kalvo::host
