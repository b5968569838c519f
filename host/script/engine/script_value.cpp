#include "host/script/engine/script_value.h"

#include <cmath>

#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"

namespace kalvo::host {
namespace {

constexpr double kDayMilliseconds = 86400000;
constexpr double kUnixEpochSerial = 25569;  // 1970-01-01

// Days and their fraction as a serial: before day 0 the fraction counts away from it.
double SerialOf(double days) {
  const double whole = std::floor(days);
  return days >= 0 ? days : whole - (days - whole);
}

double DaysOf(double serial) {
  const double whole = std::trunc(serial);
  return serial >= 0 ? serial : whole + (whole - serial);
}

double CallNumber(duk_context* context, duk_idx_t index, const char* method) {
  duk_push_string(context, method);
  duk_call_prop(context, index, 0);
  const double number = duk_to_number(context, -1);
  duk_pop(context);
  return number;
}

bool IsInstance(duk_context* context, duk_idx_t index, const char* constructor) {
  duk_get_global_string(context, constructor);
  const bool is = duk_is_function(context, -1) && duk_instanceof(context, index, -1);
  duk_pop(context);
  return is;
}

// A Date object in its local time, to the second as dates are written here. An invalid one has no serial.
Value DateAt(duk_context* context, duk_idx_t index) {
  const double milliseconds = CallNumber(context, index, "getTime");
  const double offset = CallNumber(context, index, "getTimezoneOffset") * 60000;
  return Date{SerialOf((milliseconds - offset) / kDayMilliseconds + kUnixEpochSerial)};
}

void PushDate(duk_context* context, Date date) {
  const double local = std::round((DaysOf(date.serial) - kUnixEpochSerial) * kDayMilliseconds);
  const auto push = [&](double milliseconds) {
    duk_get_global_literal(context, "Date");
    duk_push_number(context, milliseconds);
    duk_new(context, 1);
  };
  // The offset is that of the moment itself: found in two steps, the second from close by.
  push(local);
  const double near = local + CallNumber(context, duk_get_top_index(context), "getTimezoneOffset") * 60000;
  duk_pop(context);
  push(near);
  const double exact = local + CallNumber(context, duk_get_top_index(context), "getTimezoneOffset") * 60000;
  if (exact == near) return;
  duk_pop(context);
  push(exact);
}

Value NumberValue(double number) {
  const bool fits = number >= INT32_MIN && number <= INT32_MAX && std::trunc(number) == number;
  return fits ? Value(static_cast<std::int32_t>(number)) : Value(number);
}

// An object: dates and boxed primitives are values, the values of a request's key are their text.
Value ObjectValue(Engine& engine, duk_idx_t index) {
  duk_context* context = engine.Context();
  if (auto own = NativeAt(context, index)) {
    const auto* text = dynamic_cast<const TextObject*>(own.get());
    return text ? Value(text->Text()) : Value(std::move(own));
  }
  duk_require_stack(context, 8);
  if (IsInstance(context, index, "Date")) return DateAt(context, index);
  for (const char* boxed : {"String", "Number", "Boolean"}) {
    if (!IsInstance(context, index, boxed)) continue;
    duk_dup(context, index);
    duk_to_primitive(context, -1, DUK_HINT_NONE);
    Value value = duk_is_object(context, -1) ? Value() : ValueAt(engine, -1);
    duk_pop(context);
    return value;
  }
  return std::make_shared<OpaqueScriptObject>(engine, index);
}

}  // namespace

ScriptReference::ScriptReference(Engine& engine, duk_idx_t index) : home_(engine.Home()) {
  duk_context* context = engine.Context();
  duk_require_stack(context, 4);
  const duk_idx_t value = duk_normalize_index(context, index);
  duk_push_heap_stash(context);
  duk_get_prop_literal(context, -1, "kept");
  slot_ = engine.TakeSlot();
  duk_dup(context, value);
  duk_put_prop_index(context, -2, slot_);
  duk_pop_2(context);
}

ScriptReference::~ScriptReference() {
  if (!*home_) return;
  duk_context* context = (*home_)->Context();
  if (!duk_check_stack(context, 4)) return;  // kept until the engine closes
  duk_push_heap_stash(context);
  duk_get_prop_literal(context, -1, "kept");
  duk_push_undefined(context);
  duk_put_prop_index(context, -2, slot_);
  duk_pop_2(context);
  (*home_)->GiveSlot(slot_);
}

Engine& ScriptReference::Home() const {
  if (!*home_) throw ObjectRequired();
  return **home_;
}

void ScriptReference::Push() const {
  duk_context* context = Home().Context();
  duk_push_heap_stash(context);
  duk_get_prop_literal(context, -1, "kept");
  duk_get_prop_index(context, -1, slot_);
  duk_replace(context, -3);
  duk_pop(context);
}

Value ValueAt(Engine& engine, duk_idx_t index) {
  duk_context* context = engine.Context();
  const duk_idx_t at = duk_normalize_index(context, index);
  switch (duk_get_type(context, at)) {
    case DUK_TYPE_NULL: return Null{};
    case DUK_TYPE_BOOLEAN: return duk_get_boolean(context, at) != 0;
    case DUK_TYPE_NUMBER: return NumberValue(duk_get_number(context, at));
    case DUK_TYPE_STRING:
      if (duk_is_symbol(context, at)) throw TypeMismatch();
      return TextAt(context, at);
    case DUK_TYPE_OBJECT: return ObjectValue(engine, at);
    case DUK_TYPE_UNDEFINED:
    case DUK_TYPE_NONE: return Empty{};
    default: throw TypeMismatch();
  }
}

std::string TextOf(const Engine& engine, const Value& value) { return ToText(value, engine.PageLocale()); }

std::string TextOf(Engine& engine, duk_idx_t index) {
  if (duk_is_string(engine.Context(), index) && !duk_is_symbol(engine.Context(), index)) {
    return TextAt(engine.Context(), index);
  }
  return TextOf(engine, ValueAt(engine, index));
}

void PushValue(Engine& engine, const Value& value) {
  duk_context* context = engine.Context();
  struct Pusher {
    Engine& engine;
    duk_context* context;
    void operator()(Empty) const { duk_push_undefined(context); }
    void operator()(Null) const { duk_push_null(context); }
    void operator()(bool flag) const { duk_push_boolean(context, flag); }
    void operator()(std::int32_t number) const { duk_push_int(context, number); }
    void operator()(std::int64_t number) const { duk_push_number(context, static_cast<double>(number)); }
    void operator()(double number) const { duk_push_number(context, number); }
    void operator()(Date date) const { PushDate(context, date); }
    void operator()(const std::string& text) const { PushText(context, text); }
    void operator()(const Bytes& bytes) const {
      PushText(context, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
    void operator()(const std::shared_ptr<Object>& object) const { PushObject(engine, object); }
  };
  std::visit(Pusher{engine, context}, value);
}

void PushObject(Engine& engine, const std::shared_ptr<Object>& object) {
  duk_context* context = engine.Context();
  duk_require_stack(context, 12);
  if (!object) {
    duk_push_null(context);
  } else if (const auto* script = dynamic_cast<const ScriptBacked*>(object.get())) {
    script->Reference().Push();
  } else {
    engine.Bridge().Push(engine, object);
  }
}

std::shared_ptr<Object> NativeAt(duk_context* context, duk_idx_t index) {
  return Engine::Of(context).Bridge().At(context, index);
}

void PushObject(Engine& engine, Object& object) { PushObject(engine, object.weak_from_this().lock()); }

}  // namespace kalvo::host
