#include "host/script/page/helpers.h"

#include "kalvo/platform/error.h"

namespace kalvo::host {
namespace {

// Walks the elements of an array, the keys of a collection or of an object, or the items that an object counts.
constexpr const char* kEnumerator = R"(
(function Enumerator(collection) {
  var items = [], at = 0, i, key;
  if (Array.isArray(collection)) {
    items = collection.slice();
  } else if (collection !== null && collection !== undefined) {
    for (key in collection) { if (key !== "Count" && typeof collection[key] !== "function") { items.push(key); } }
    if (items.length === 0 && typeof collection.Item === "function") {
      for (i = 1; i <= collection.Count; ++i) { items.push(collection.Item(i)); }
    }
  }
  this.atEnd = function () { return at >= items.length; };
  this.item = function () { return items[at]; };
  this.moveNext = function () { ++at; };
  this.moveFirst = function () { at = 0; };
}))";

constexpr duk_uint_t kHiddenValue =
    DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_SET_WRITABLE | DUK_DEFPROP_SET_CONFIGURABLE | DUK_DEFPROP_FORCE;

// Compiles the text, and stands in the getter's place from then on.
duk_ret_t GetEnumerator(duk_context* context) {
  duk_push_string(context, kEnumerator);
  duk_push_literal(context, "Enumerator");
  duk_compile(context, DUK_COMPILE_EVAL);
  duk_call(context, 0);
  duk_push_global_object(context);
  duk_push_literal(context, "Enumerator");
  duk_dup(context, -3);
  duk_def_prop(context, -3, kHiddenValue);
  duk_pop(context);
  return 1;
}

duk_ret_t GetDescription(duk_context* context) {
  duk_push_this(context);
  duk_get_prop_literal(context, -1, "message");
  return 1;
}

duk_ret_t SetDescription(duk_context* context) {
  duk_push_this(context);
  duk_push_literal(context, "description");
  duk_dup(context, 0);
  duk_def_prop(context, -3, kHiddenValue);
  return 0;
}

}  // namespace

void InstallHelpers(duk_context* context) {
  duk_push_literal(context, "Enumerator");
  duk_push_c_function(context, GetEnumerator, 0);
  duk_def_prop(context, -3, DUK_DEFPROP_HAVE_GETTER | DUK_DEFPROP_SET_CONFIGURABLE);
  duk_get_prop_literal(context, -1, "Error");
  duk_get_prop_literal(context, -1, "prototype");
  duk_push_literal(context, "number");
  duk_push_int(context, codes::kFailed);
  duk_def_prop(context, -3, kHiddenValue);
  duk_push_literal(context, "description");
  duk_push_c_function(context, GetDescription, 0);
  duk_push_c_function(context, SetDescription, 1);
  duk_def_prop(context, -4, DUK_DEFPROP_HAVE_GETTER | DUK_DEFPROP_HAVE_SETTER | DUK_DEFPROP_SET_CONFIGURABLE);
  duk_pop_2(context);
}

}  // namespace kalvo::host
