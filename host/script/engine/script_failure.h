#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/script/engine/kalvo_duktape.h"

namespace kalvo::host {

// A thrown script value, read before it is dropped.
struct ScriptFailure {
  std::int32_t number = 0;  // 0x80004005 where it has none
  std::string description;  // else its message
  std::string message;      // as a console shows it: "TypeError: undefined not callable"
  std::string file;         // the script that threw it, and the line of it; "" and 0 when unknown
  int line = 0;
};

// Reads the thrown value on the top of the stack and takes it away.
ScriptFailure TakeThrown(duk_context* context);

// Leaves an error of the program on the stack, as script sees it: number, description, message.
void PushError(duk_context* context, std::int32_t number, std::string_view description);

}  // namespace kalvo::host
