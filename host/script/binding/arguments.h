#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/script/engine/script_value.h"
#include "host/script/late_binding/adapters.h"
#include "kalvo/display.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::host {

// A published parameter: its name and what it is when it is left out.
struct Parameter {
  enum class Default { None, Text, Number, Boolean };

  constexpr Parameter() = default;
  constexpr Parameter(const char* itsName) : name(itsName) {}  // NOLINT: rows of a table
  constexpr Parameter(const char* itsName, const char* value) : name(itsName), kind(Default::Text), text(value) {}
  constexpr Parameter(const char* itsName, int value) : name(itsName), kind(Default::Number), number(value) {}
  constexpr Parameter(const char* itsName, bool value) : name(itsName), kind(Default::Boolean), number(value) {}

  std::string_view name;
  Default kind = Default::None;
  std::string_view text;
  std::int32_t number = 0;

  Value DefaultValue() const;  // empty for a parameter that has none
};

// One call from script: its arguments stand on the stack from 0 on, filled up with undefined.
struct CallFrame {
  Engine& engine;
  Object& self;
  std::span<const Parameter> parameters;
  std::size_t given = 0;  // how many arguments the script wrote

  // The argument that is being converted, and what it must be, for the message of a failure; kNone while none is.
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  std::size_t reading = kNone;
  std::string_view wanted{};

  duk_context* Context() const { return engine.Context(); }

  // The argument as a loosely typed value, or the parameter's default.
  Value ValueOf(std::size_t i) const;
  std::string TextOf(std::size_t i) const;
};

// Where an argument is taken from.
struct ArgumentSource {
  CallFrame& frame;
  std::size_t i;
  duk_idx_t Index() const { return static_cast<duk_idx_t>(i); }

  // Says what the argument must be before it is converted.
  const ArgumentSource& Wants(std::string_view what) const {
    frame.reading = i;
    frame.wanted = what;
    return *this;
  }

  Value AsValue(std::string_view what) const { return Wants(what).frame.ValueOf(i); }
  std::string AsText() const { return Wants("text").frame.TextOf(i); }
};

// The argument of one parameter type: converted when it is made, handed over by `Get`, written back where the
// operation may change it.
template <typename T>
struct Argument;

struct UnchangedArgument {
  using Source = ArgumentSource;
  void WriteBack(CallFrame&) {}
};

template <typename T>
requires std::same_as<T, std::string_view>
struct Argument<T> : UnchangedArgument {
  explicit(false) Argument(const Source& source) : text(source.AsText()) {}
  std::string_view Get() const { return text; }
  std::string text;
};

template <>
struct Argument<const Value&> : UnchangedArgument {
  explicit(false) Argument(const Source& source) : value(source.AsValue("value")) {}
  const Value& Get() const { return value; }
  Value value;
};

// What a page prints: the text of a value, and of a script object what it says of itself.
struct Printed {
  std::string text;
};

template <>
struct Argument<const Printed&> : UnchangedArgument {
  explicit(false) Argument(const Source& source);
  const Printed& Get() const { return printed; }
  Printed printed;
};

// Bytes: an array of numbers from 0 to 255, or one of the engine's buffers.
struct RawBytes {
  std::string bytes;
};

template <>
struct Argument<const RawBytes&> : UnchangedArgument {
  explicit(false) Argument(const Source& source);
  const RawBytes& Get() const { return raw; }
  RawBytes raw;
};

// What was not written at all, unlike what was written as undefined.
template <>
struct Argument<std::optional<Value>> : UnchangedArgument {
  explicit(false) Argument(const Source& source) {
    if (source.i < source.frame.given) value = source.AsValue("value");
  }
  std::optional<Value> Get() { return std::move(value); }
  std::optional<Value> value;
};

template <>
struct Argument<bool> : UnchangedArgument {
  explicit(false) Argument(const Source& source) : value(ToBoolean(source.AsValue("truth value"))) {}
  bool Get() const { return value; }
  bool value;
};

template <>
struct Argument<std::int16_t> : UnchangedArgument {
  explicit(false) Argument(const Source& source) : value(ToInt16(source.AsValue("number"))) {}
  std::int16_t Get() const { return value; }
  std::int16_t value;
};

template <>
struct Argument<std::int32_t> : UnchangedArgument {
  explicit(false) Argument(const Source& source) : value(ToInt32(source.AsValue("number"))) {}
  std::int32_t Get() const { return value; }
  std::int32_t value;
};

// An enumeration arrives as its number; any number of 32 bits does.
template <typename E>
requires std::is_enum_v<E>
struct Argument<E> : UnchangedArgument {
  explicit(false) Argument(const Source& source) : value(ToInt32(source.AsValue("number"))) {}
  E Get() const { return static_cast<E>(value); }
  std::int32_t value;
};

// An image descriptor: an array of path, width and height.
template <>
struct Argument<const Image&> : UnchangedArgument {
  explicit(false) Argument(const Source& source);
  const Image& Get() const { return image; }
  Image image;
};

// A table's columns, as far as they could be read: with the first that is no column id the reading ends.
struct ColumnIds {
  std::vector<std::int16_t> ids;  // as many as were given; 0 from a failure on
  bool areSized = false;          // false for what is no array
  std::optional<Error> failure;
};

template <>
struct Argument<const ColumnIds&> : UnchangedArgument {
  explicit(false) Argument(const Source& source);
  const ColumnIds& Get() const { return columns; }
  ColumnIds columns;
};

// ---- arguments that an operation changes ----------------------------------------------------------------

// A box `{value: x}`; a plain value is taken too, and what the operation makes of it is lost.
struct BoxedValue {
  explicit BoxedValue(const ArgumentSource& source);
  void WriteBack(CallFrame& frame, const Value& changed) const;
  Value value;
  duk_idx_t index;
  bool boxed;
};

template <typename T>
struct BoxedArgument {
  using Source = ArgumentSource;
  T& Get() { return held; }
  void WriteBack(CallFrame& frame) const { box.WriteBack(frame, Value(held)); }
  BoxedValue box;
  T held;
};

template <>
struct Argument<std::string&> : BoxedArgument<std::string> {
  explicit(false) Argument(const Source& source) : BoxedArgument{BoxedValue(source), {}} {
    held = TextOf(source.frame.engine, box.value);
  }
};

template <>
struct Argument<bool&> : BoxedArgument<bool> {
  explicit(false) Argument(const Source& source) : BoxedArgument{BoxedValue(source), {}} {
    held = ToBoolean(box.value);
  }
};

template <>
struct Argument<Value&> : BoxedArgument<Value> {
  explicit(false) Argument(const Source& source) : BoxedArgument{BoxedValue(source), {}} { held = box.value; }
};

// ---- objects --------------------------------------------------------------------------------------------

template <typename T>
concept OuterInterface = requires(Engine& engine, duk_idx_t index) {
  { Adapt<T>(engine, index) } -> std::same_as<std::shared_ptr<T>>;
};

// An operation that takes a live container reports a missing one as any other failure of it: what is no object fails
// when it is asked, not before.
template <typename T>
concept FailsWhenAsked = std::same_as<T, LiveContainer>;

// An object of a class of ours: fails with 424 for what is no object, with 13 for an object of another class.
// Where the operation takes an interface, any script object serves.
template <typename T>
requires std::derived_from<T, Object>
struct Argument<T&> : UnchangedArgument {
  explicit(false) Argument(const Source& source) {
    Engine& engine = source.Wants("object that serves here").frame.engine;
    if constexpr (OuterInterface<T>) {
      const bool isAsked = FailsWhenAsked<T> && !duk_is_object(engine.Context(), source.Index());
      object = isAsked ? Adapt<T>(engine, source.Index()) : InterfaceAt<T>(engine, source.Index());
    } else {
      if (!duk_is_object(engine.Context(), source.Index())) throw ObjectRequired();
      object = std::dynamic_pointer_cast<T>(NativeAt(engine.Context(), source.Index()));
      if (!object) throw TypeMismatch();
    }
  }
  T& Get() const { return *object; }
  std::shared_ptr<T> object;
};

// The object that an operation runs on.
template <typename T>
T& SelfOf(CallFrame& frame) {
  auto* self = dynamic_cast<T*>(&frame.self);
  if (!self) throw TypeMismatch();
  return *self;
}

// ---- results --------------------------------------------------------------------------------------------

void PushImage(Engine& engine, const Image& image);
void PushNumbers(Engine& engine, std::span<const std::int16_t> numbers);

template <typename T>
void PushResult(Engine& engine, const T& result) {
  duk_context* context = engine.Context();
  if constexpr (std::same_as<T, bool>) {
    duk_push_boolean(context, result);
  } else if constexpr (std::integral<T> || std::is_enum_v<T>) {
    duk_push_int(context, static_cast<duk_int_t>(result));
  } else if constexpr (std::convertible_to<T, std::string_view>) {
    PushText(context, result);
  } else if constexpr (std::same_as<T, Image>) {
    PushImage(engine, result);
  } else if constexpr (std::same_as<T, std::vector<std::int16_t>>) {
    PushNumbers(engine, result);
  } else if constexpr (std::same_as<T, Value>) {
    PushValue(engine, result);
  } else {
    PushObject(engine, result);  // a shared pointer to an object
  }
}

}  // namespace kalvo::host
