#include "host/script/binding/explanation.h"

#include "host/script/engine/engine_text.h"
#include "kalvo/platform/append.h"

namespace kalvo::host {
namespace {

constexpr std::size_t kMostShown = 60;  // of a text, in bytes

// Whatever a page handed over, in a few words. Nothing of the page's own is called for it.
std::string Shown(duk_context* context, duk_idx_t index) {
  switch (duk_get_type(context, index)) {
    case DUK_TYPE_NULL: return "null";
    case DUK_TYPE_BOOLEAN: return duk_get_boolean(context, index) != 0 ? "true" : "false";
    case DUK_TYPE_NUMBER: {
      duk_dup(context, index);
      std::string number = duk_to_string(context, -1);
      duk_pop(context);
      return number;
    }
    case DUK_TYPE_STRING: {
      std::string text = InDescription(TextAt(context, index));
      if (text.size() > kMostShown) {
        text.resize(kMostShown);
        while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80) text.pop_back();
        if (!text.empty() && static_cast<unsigned char>(text.back()) >= 0xC0) text.pop_back();
        text += "...";
      }
      return Built([&](std::string& out) { Append(out, '"', text, '"'); });
    }
    case DUK_TYPE_OBJECT:
      if (duk_is_array(context, index)) return "an array";
      return duk_is_function(context, index) ? "a function" : "an object";
    default: return "undefined";
  }
}

// The parameters that have no default and were not given, "a" or "a, b".
std::string LeftOut(const CallFrame& frame) {
  std::string names;
  for (std::size_t i = frame.given; i < frame.parameters.size(); ++i) {
    const Parameter& parameter = frame.parameters[i];
    if (parameter.kind == Parameter::Default::None) Append(names, names.empty() ? "" : ", ", parameter.name);
  }
  return names;
}

// Whether an argument was refused for what it is, rather than for how large it is.
bool IsOfAKind(const Error& error) {
  for (const Error& kind : {TypeMismatch(), ObjectRequired(), MemberNotSupported(), InvalidUseOfNull()}) {
    if (error.Number() == kind.Number()) return true;
  }
  return false;
}

}  // namespace

std::string Explained(const CallFrame& frame, std::string_view operation, const Error& error) {
  const auto* explained = dynamic_cast<const ExplainedError*>(&error);
  const std::string& what = explained ? explained->Message() : error.Description();
  return Built([&](std::string& out) {
    Append(out, operation, ": ");
    const bool isArgument = frame.reading < frame.parameters.size();
    if (isArgument && frame.reading >= frame.given) {
      Append(out, frame.parameters[frame.reading].name, " was left out: ", what);
    } else if (isArgument && !explained) {
      const std::string shown = Shown(frame.Context(), static_cast<duk_idx_t>(frame.reading));
      Append(out, frame.parameters[frame.reading].name, ": ", shown);
      if (IsOfAKind(error)) {
        Append(out, " is no ", frame.wanted);
      } else {
        Append(out, ": ", what);
      }
    } else {
      const std::string leftOut = LeftOut(frame);
      Append(out, what);
      if (!leftOut.empty()) Append(out, " (", leftOut, " left out)");
    }
  });
}

std::string NotOnItsObject(std::string_view operation) {
  return Built([&](std::string& out) { Append(out, operation, ": called without its object"); });
}

std::string OnlyRead(std::string_view property) {
  return Built([&](std::string& out) { Append(out, property, ": the property can only be read"); });
}

}  // namespace kalvo::host
