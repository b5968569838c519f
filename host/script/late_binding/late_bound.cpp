#include "host/script/late_binding/late_bound.h"

#include "kalvo/platform/append.h"
#include "kalvo/platform/error.h"

namespace kalvo::host {

bool IsScriptFunction(duk_context* context, duk_idx_t index) {
  return duk_is_function(context, index) && !NativeAt(context, index);
}

bool LateBound::PushMember(Engine& engine, const char* member) const {
  duk_context* context = engine.Context();
  Reference().Push();
  if (!duk_is_object(context, -1)) throw ObjectRequired();
  if (!duk_has_prop_string(context, -1, member)) {
    throw ExplainedError(MemberNotSupported(),
                         Built([&](std::string& out) { Append(out, serves_, ": there is no member ", member); }));
  }
  duk_get_prop_string(context, -1, member);
  if (!IsScriptFunction(context, -1)) return false;
  duk_swap_top(context, -2);  // the function, then its object
  return true;
}

std::string LateBound::Named(std::string_view member) const {
  return Built([&](std::string& out) { Append(out, serves_, ": ", member); });
}

void LateBound::NoteNoAnswer(Engine& engine, std::string_view member, std::string_view missing) const {
  ScriptFailure failure;
  failure.number = codes::kFailed;
  failure.message = missing;
  failure.description = missing;
  engine.Note(Named(member), std::move(failure));
}

bool LateBound::Has(Engine& engine, const char* member) const {
  Reference().Push();
  const bool has = duk_is_object(engine.Context(), -1) && duk_has_prop_string(engine.Context(), -1, member);
  duk_pop(engine.Context());
  return has;
}

}  // namespace kalvo::host
