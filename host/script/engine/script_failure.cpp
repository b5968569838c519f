#include "host/script/engine/script_failure.h"

#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>

#include "host/script/engine/engine_text.h"
#include "kalvo/platform/error.h"

namespace kalvo::host {
namespace {

// The text of a property, nothing when it is no string. Reading may run script, so it is guarded by the caller.
std::optional<std::string> TextProperty(duk_context* context, const char* name) {
  std::optional<std::string> text;
  duk_get_prop_string(context, -1, name);
  if (duk_is_string(context, -1) && !duk_is_symbol(context, -1)) text = TextAt(context, -1);
  duk_pop(context);
  return text;
}

// The calls of a stack text that are script: lines such as "    at name (file:12) preventsyield".
std::vector<ScriptFrame> CallsIn(std::string_view stack) {
  constexpr std::string_view kAt = "    at ";
  std::vector<ScriptFrame> calls;
  std::size_t at = stack.find('\n');
  while (at != std::string::npos) {
    const std::size_t end = stack.find('\n', at + 1);
    const std::string_view row = stack.substr(at + 1, end == std::string::npos ? end : end - at - 1);
    at = end;
    const std::size_t close = row.rfind(')');
    const std::size_t colon = row.rfind(':', close);
    const std::size_t open = row.find('(');
    if (close == std::string::npos || colon == std::string::npos || open == std::string::npos) continue;
    const std::string_view marks = row.substr(close);
    const bool own = marks.find("native") == std::string::npos && marks.find("internal") == std::string::npos;
    if (!own || open > colon || !row.starts_with(kAt) || open <= kAt.size()) continue;
    const std::string_view name = row.substr(kAt.size(), open - 1 - kAt.size());
    ScriptFrame& call = calls.emplace_back();
    if (name != "[anon]" && name != "global" && name != "eval") call.function = name;
    call.file = row.substr(open + 1, colon - open - 1);
    std::from_chars(row.data() + colon + 1, row.data() + close, call.line);
  }
  return calls;
}

std::int32_t SignedNumber(double number) {
  if (!std::isfinite(number)) return codes::kFailed;
  return static_cast<std::int32_t>(
      static_cast<std::uint32_t>(static_cast<std::int64_t>(std::fmod(number, 4294967296.0))));
}

// The program's own run-time errors are 0x800A0000 plus their number in script; any other number is the same on both
// sides.
constexpr std::uint32_t kRunTimeErrors = 0x800A0000;

std::int32_t NumberForScript(std::int32_t number) {
  if (!IsRunTimeError(number)) return number;
  return static_cast<std::int32_t>(kRunTimeErrors + static_cast<std::uint32_t>(number));
}

// The number of an exception: what has none, or 0, which would be no error at all, is a failure all the same.
std::int32_t NumberFromScript(double thrown) {
  const std::int32_t number = SignedNumber(thrown);
  if (number == 0) return codes::kFailed;
  const auto own = static_cast<std::int32_t>(static_cast<std::uint32_t>(number) - kRunTimeErrors);
  return IsRunTimeError(own) ? own : number;
}

// Reads what was thrown. It may be anything, and its properties may be script that throws again.
struct FailureReader {
  ScriptFailure failure;

  static duk_ret_t Read(duk_context* context, void* data) {
    ScriptFailure& failure = static_cast<FailureReader*>(data)->failure;
    std::optional<std::string> description;
    if (duk_is_object(context, -1)) description = ReadObject(context, failure);
    failure.message = [&] {
      duk_dup_top(context);
      duk_safe_to_string(context, -1);
      std::string text = TextAt(context, -1);
      duk_pop(context);
      return text;
    }();
    failure.description = description.value_or(failure.message);
    if (description && !duk_is_error(context, -1)) failure.message = failure.description;
    return 0;
  }

  // Answers the description, else the message.
  static std::optional<std::string> ReadObject(duk_context* context, ScriptFailure& failure) {
    failure.calls = CallsIn(TextProperty(context, "stack").value_or(""));
    duk_get_prop_string(context, -1, "number");
    if (duk_is_number(context, -1)) failure.number = NumberFromScript(duk_get_number(context, -1));
    duk_pop(context);
    std::optional<std::string> description = TextProperty(context, "description");
    return description ? description : TextProperty(context, "message");
  }
};

}  // namespace

ScriptFailure TakeThrown(duk_context* context) {
  FailureReader reader;
  reader.failure.number = codes::kFailed;
  const bool unread = duk_safe_call(context, FailureReader::Read, &reader, 1, 1) != DUK_EXEC_SUCCESS;
  if (unread && reader.failure.message.empty()) {
    const bool nested = duk_get_error_code(context, -1) == DUK_ERR_RANGE_ERROR;
    reader.failure.message = nested ? "RangeError: calls are nested too deeply" : "an error that cannot be read";
    reader.failure.description = reader.failure.message;
  }
  duk_pop(context);
  return std::move(reader.failure);
}

void PushError(duk_context* context, std::int32_t number, std::string_view description, std::string_view message) {
  PushText(context, description);
  duk_push_error_object(context, DUK_ERR_ERROR, "%s", "");
  PushText(context, message);
  duk_put_prop_literal(context, -2, "message");
  duk_dup(context, -2);
  duk_put_prop_literal(context, -2, "description");
  duk_push_int(context, NumberForScript(number));
  duk_put_prop_literal(context, -2, "number");
}

}  // namespace kalvo::host
