#include "host/script/binding/arguments.h"

namespace kalvo::host {
namespace {

// A script object that may be a box: none of ours, and none that is a value or a list.
bool IsBox(duk_context* context, duk_idx_t index) {
  if (!duk_is_object(context, index) || duk_is_function(context, index) || duk_is_array(context, index)) return false;
  return !NativeAt(context, index) && duk_has_prop_literal(context, index, "value");
}

duk_size_t ArrayLength(duk_context* context, duk_idx_t index) {
  if (!duk_is_array(context, index)) throw TypeMismatch();
  return duk_get_length(context, index);
}

// Memory that is counted to the page while it is needed.
class Charged {
 public:
  Charged(Engine& engine, std::size_t bytes) : engine_(engine), bytes_(static_cast<std::ptrdiff_t>(bytes)) {
    engine_.Charge(bytes_);
  }
  ~Charged() { engine_.Charge(-bytes_); }
  Charged(const Charged&) = delete;
  Charged& operator=(const Charged&) = delete;

 private:
  Engine& engine_;
  std::ptrdiff_t bytes_;
};

Value Element(Engine& engine, duk_idx_t array, duk_uarridx_t i) {
  duk_get_prop_index(engine.Context(), array, i);
  Value value = ValueAt(engine, -1);
  duk_pop(engine.Context());
  return value;
}

void ReadColumns(Engine& engine, duk_idx_t array, ColumnIds& columns) {
  const duk_size_t length = ArrayLength(engine.Context(), array);
  const Charged room(engine, length * sizeof(columns.ids[0]));
  columns.ids.resize(length);
  columns.areSized = true;
  for (duk_size_t i = 0; i < length; ++i) {
    engine.CheckLimits();
    const Value id = Element(engine, array, static_cast<duk_uarridx_t>(i));
    if (std::holds_alternative<std::shared_ptr<Object>>(id)) throw TypeMismatch();
    columns.ids[i] = ToInt16(id);
  }
}

}  // namespace

Value Parameter::DefaultValue() const {
  switch (kind) {
    case Default::Text: return std::string(text);
    case Default::Number: return number;
    case Default::Boolean: return number != 0;
    case Default::None: break;
  }
  return Empty{};
}

Value CallFrame::ValueOf(std::size_t i) const {
  const auto index = static_cast<duk_idx_t>(i);
  if (duk_is_undefined(Context(), index)) return parameters[i].DefaultValue();
  return ValueAt(engine, index);
}

std::string CallFrame::TextOf(std::size_t i) const {
  const auto index = static_cast<duk_idx_t>(i);
  if (duk_is_undefined(Context(), index)) return host::TextOf(engine, parameters[i].DefaultValue());
  return host::TextOf(engine, index);
}

Argument<const Printed&>::Argument(const Source& source) {
  duk_context* context = source.frame.Context();
  source.Wants("text");
  const bool isScriptObject = duk_is_object(context, source.Index()) && !NativeAt(context, source.Index());
  if (!isScriptObject) {
    printed.text = source.frame.TextOf(source.i);
    return;
  }
  duk_dup(context, source.Index());
  duk_to_string(context, -1);
  printed.text = TextAt(context, -1);
  duk_pop(context);
}

Argument<const RawBytes&>::Argument(const Source& source) {
  Engine& engine = source.Wants("array of bytes").frame.engine;
  duk_context* context = engine.Context();
  duk_size_t size = 0;
  if (const void* buffer = duk_get_buffer_data(context, source.Index(), &size)) {
    raw.bytes.assign(static_cast<const char*>(buffer), size);
    return;
  }
  const duk_size_t length = ArrayLength(context, source.Index());
  const Charged room(engine, length);
  raw.bytes.reserve(length);
  for (duk_size_t i = 0; i < length; ++i) {
    if (i % 1024 == 0) engine.CheckLimits();
    const std::int32_t byte = ToInt32(Element(engine, source.Index(), static_cast<duk_uarridx_t>(i)));
    if (byte < 0 || byte > 255) throw Overflow();
    raw.bytes += static_cast<char>(byte);
  }
}

Argument<const Image&>::Argument(const Source& source) {
  Engine& engine = source.Wants("image: an array of path, width and height").frame.engine;
  constexpr duk_size_t kElements = 3;
  if (ArrayLength(engine.Context(), source.Index()) < kElements) throw SubscriptOutOfRange();
  image.path = TextOf(engine, Element(engine, source.Index(), 0));
  image.width = ToInt16(Element(engine, source.Index(), 1));
  image.height = ToInt16(Element(engine, source.Index(), 2));
}

Argument<const ColumnIds&>::Argument(const Source& source) {
  try {
    ReadColumns(source.frame.engine, source.Index(), columns);
  } catch (const Error& error) {
    columns.failure = error;
  }
}

BoxedValue::BoxedValue(const ArgumentSource& source)
    : index(source.Index()), boxed(IsBox(source.frame.Context(), source.Index())) {
  duk_context* context = source.Wants("value of its kind").frame.Context();
  if (!boxed) {
    value = source.frame.ValueOf(source.i);
    return;
  }
  duk_get_prop_literal(context, index, "value");
  value = ValueAt(source.frame.engine, -1);
  duk_pop(context);
}

void BoxedValue::WriteBack(CallFrame& frame, const Value& changed) const {
  if (!boxed) return;
  PushValue(frame.engine, changed);
  duk_put_prop_literal(frame.Context(), index, "value");
}

void PushImage(Engine& engine, const Image& image) {
  duk_context* context = engine.Context();
  duk_push_array(context);
  PushText(context, image.path);
  duk_put_prop_index(context, -2, 0);
  duk_push_int(context, image.width);
  duk_put_prop_index(context, -2, 1);
  duk_push_int(context, image.height);
  duk_put_prop_index(context, -2, 2);
}

void PushNumbers(Engine& engine, std::span<const std::int16_t> numbers) {
  duk_context* context = engine.Context();
  duk_push_array(context);
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    duk_push_int(context, numbers[i]);
    duk_put_prop_index(context, -2, static_cast<duk_uarridx_t>(i));
  }
}

}  // namespace kalvo::host
