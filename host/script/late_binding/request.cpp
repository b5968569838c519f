// A script object as the page's request. `QueryString` may be a function of the key, an object of keys, or one of
// the callable intrinsic collections; the values of a key may be a text, an array, or an object with Count and Item.
#include "host/script/late_binding/adapters.h"
#include "host/script/late_binding/collections.h"
#include "host/script/late_binding/late_bound.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::host {
namespace {

// The values of a key, whatever stands for them on the top of the stack. Only what is asked for is read: the count
// asks no item, and one item asks no other.
class KeyValues {
 public:
  explicit KeyValues(Engine& engine) : engine_(engine), context_(engine.Context()), at_(duk_get_top_index(context_)) {}

  std::int32_t Count() const {
    switch (FindForm()) {
      case Form::None: return 0;
      case Form::One: return 1;
      case Form::Array: return ToInt32(static_cast<double>(duk_get_length(context_, at_)));
      case Form::Items: break;
    }
    PushMember("Count");
    const std::int32_t count = ToInt32(ValueAt(engine_, -1));
    duk_pop(context_);
    return count;
  }

  // Value i, from 1. How many there are is known by the object itself where it offers items.
  std::string Item(std::int32_t i) const {
    const Form form = FindForm();
    if (form == Form::Items) return AskedItem(i);
    if (i < 1 || i > Count()) throw SubscriptOutOfRange();
    return form == Form::One ? TextOf(engine_, at_) : Element(i);
  }

  // All values: those of an object of ours are at hand.
  std::vector<std::string> All() const {
    if (auto own = std::dynamic_pointer_cast<ValueList>(NativeAt(context_, at_))) return own->Values();
    std::vector<std::string> values;
    const std::int32_t count = Count();
    for (std::int32_t i = 1; i <= count; ++i) {
      engine_.CheckLimits();
      values.push_back(Item(i));
    }
    return values;
  }

 private:
  enum class Form { None, One, Array, Items };

  Form FindForm() const {
    if (duk_is_null_or_undefined(context_, at_)) return Form::None;
    if (!duk_is_object(context_, at_)) return Form::One;
    if (duk_is_array(context_, at_)) return Form::Array;
    return duk_has_prop_literal(context_, at_, "Count") ? Form::Items : Form::One;
  }

  std::string Element(std::int32_t i) const {
    duk_get_prop_index(context_, at_, static_cast<duk_uarridx_t>(i - 1));
    std::string text = TextOf(engine_, -1);
    duk_pop(context_);
    return text;
  }

  std::string AskedItem(std::int32_t i) const {
    if (!duk_has_prop_literal(context_, at_, "Item")) throw MemberNotSupported();
    duk_push_literal(context_, "Item");
    duk_push_int(context_, i);
    duk_call_prop(context_, at_, 1);
    std::string text = TextOf(engine_, -1);
    duk_pop(context_);
    return text;
  }

  void PushMember(const char* name) const {
    duk_get_prop_string(context_, at_, name);
    if (!IsScriptFunction(context_, -1)) return;
    duk_dup(context_, at_);
    duk_call_method(context_, 0);
  }

  Engine& engine_;
  duk_context* context_;
  duk_idx_t at_;
};

class ScriptRequest : public Request, public LateBound {
 public:
  ScriptRequest(Engine& engine, duk_idx_t index) : LateBound(engine, index, "request") {}

  std::vector<std::string> QueryKeys() override {
    std::vector<std::string> keys;
    Reach("QueryString", [&](Engine& engine) {
      PushCollection(engine);
      keys = KeysAtTop(engine);
    });
    return keys;
  }

  std::int32_t QueryCount(std::string_view key) override {
    std::int32_t count = 0;
    WithValues("QueryString", key, [&](const KeyValues& values) { count = values.Count(); });
    return count;
  }

  std::string QueryItem(std::string_view key, std::int32_t i) override {
    std::string item;
    WithValues("QueryString", key, [&](const KeyValues& values) { item = values.Item(i); });
    return item;
  }

  std::string QueryText(std::string_view key) override { return JoinedValues(ValuesOf("QueryString", key)); }

  std::string ServerVariable(std::string_view name) override { return JoinedValues(ValuesOf("ServerVariables", name)); }

  // `Request(name)`; a request that cannot be called has its four collections looked through, in this order.
  std::string Item(std::string_view name) override {
    std::vector<std::string> values;
    bool answered = false;
    Reach("Item", [&](Engine& engine) {
      answered = PushDefaultItem(engine, name);
      if (answered) values = KeyValues(engine).All();
    });
    for (const char* collection : {"QueryString", "Form", "Cookies", "ServerVariables"}) {
      if (answered || !values.empty()) break;
      if (Offers(collection)) values = ValuesOf(collection, name);
    }
    return JoinedValues(values);
  }

 private:
  bool Offers(const char* member) const {
    bool has = false;
    Reach(member, [&](Engine& engine) { has = Has(engine, member); });
    return has;
  }

  std::vector<std::string> ValuesOf(const char* collection, std::string_view name) const {
    std::vector<std::string> all;
    WithValues(collection, name, [&](const KeyValues& values) { all = values.All(); });
    return all;
  }

  // Runs a step with the values of a name in one of the request's collections.
  template <std::invocable<const KeyValues&> Step>
  void WithValues(const char* collection, std::string_view name, Step&& step) const {
    Reach(collection, [&](Engine& engine) {
      duk_context* context = engine.Context();
      if (PushMember(engine, collection)) {
        PushArgument(engine, name);
        duk_call_method(context, 1);
      } else if (duk_is_function(context, -1)) {  // one of the callable intrinsic objects
        PushArgument(engine, name);
        duk_call(context, 1);
      } else {
        PushKey(engine, name);
      }
      step(KeyValues(engine));
    });
  }

  // Replaces a plain object by its property of a name, found without regard to case.
  static void PushKey(Engine& engine, std::string_view name) {
    duk_context* context = engine.Context();
    if (!duk_is_object(context, -1)) throw ObjectRequired();
    duk_enum(context, -1, 0);
    while (duk_next(context, -1, 0)) {
      const bool same = EqualsIgnoringCase(TextAt(context, -1), name);
      if (same) {
        duk_get_prop(context, -3);
        return;
      }
      duk_pop(context);
    }
    duk_push_undefined(context);
  }

  bool PushDefaultItem(Engine& engine, std::string_view name) const {
    duk_context* context = engine.Context();
    Reference().Push();
    if (!duk_is_function(context, -1)) {
      duk_pop(context);
      if (!Has(engine, "Item")) return false;
      PushAnswer(engine, "Item", name);
      return true;
    }
    PushArgument(engine, name);
    duk_call(context, 1);
    return true;
  }

  // The collection whose keys are enumerated: the member itself where it carries keys, else what it answers
  // without a key.
  void PushCollection(Engine& engine) const {
    duk_context* context = engine.Context();
    if (!PushMember(engine, "QueryString")) return;
    if (HasKeys(context, -2)) {
      duk_pop(context);
      return;
    }
    duk_call_method(context, 0);
  }

  static bool HasKeys(duk_context* context, duk_idx_t index) {
    duk_enum(context, index, DUK_ENUM_OWN_PROPERTIES_ONLY);
    const bool has = duk_next(context, -1, 0) != 0;
    duk_pop_n(context, has ? 2 : 1);
    return has;
  }

  static std::vector<std::string> KeysAtTop(Engine& engine) {
    duk_context* context = engine.Context();
    if (!duk_is_object(context, -1)) return {};
    if (auto own = std::dynamic_pointer_cast<NameCollection>(NativeAt(context, -1))) return own->Names().Keys();
    std::vector<std::string> keys;
    duk_enum(context, -1, 0);
    while (duk_next(context, -1, 1)) {
      // what an object offers beside its keys is no key
      const std::string key = TextAt(context, -2);
      const bool offered = duk_is_function(context, -1) || key == "Count";
      if (!offered) keys.push_back(key);
      duk_pop_2(context);
    }
    return keys;
  }
};

}  // namespace

template <>
std::shared_ptr<Request> Adapt<Request>(Engine& engine, duk_idx_t index) {
  return std::make_shared<ScriptRequest>(engine, index);
}

}  // namespace kalvo::host
