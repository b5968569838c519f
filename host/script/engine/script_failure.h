#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/script/engine/kalvo_duktape.h"
#include "kalvo/platform/error.h"

namespace kalvo::host {

// A call that was under way: the function's name, "" for one without, and the place in its file; line 0 is unknown.
struct ScriptFrame {
  std::string function;
  std::string file;
  int line = 0;
};

// A thrown script value, read before it is dropped.
struct ScriptFailure {
  std::int32_t number = 0;         // 0x80004005 where it has none
  std::string description;         // else its message
  std::string message;             // as a console shows it: "TypeError: undefined not callable"
  std::vector<ScriptFrame> calls;  // of script, from the one that threw outwards; none when unknown
};

// Reads the thrown value on the top of the stack and takes it away.
ScriptFailure TakeThrown(duk_context* context);

// Leaves an error of the program on the stack, as script sees it: number, description, message.
void PushError(duk_context* context, std::int32_t number, std::string_view description, std::string_view message);

// A failure that tells script more than its description: the operation, the parameter, the value.
class ExplainedError : public Error {
 public:
  ExplainedError(const Error& error, std::string message) : Error(error), message_(std::move(message)) {}
  const std::string& Message() const { return message_; }

 private:
  std::string message_;
};

}  // namespace kalvo::host
