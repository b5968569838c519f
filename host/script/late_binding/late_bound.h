#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "host/script/engine/script_value.h"

namespace kalvo::host {

// An object of script that serves as one of ours: its members are found by name when they are needed. A member
// that is a script function is called; any other, the callable intrinsic objects among them, is read. A member that
// is not there fails with 438, one asked of what is no object with 424.
class LateBound : public ScriptBacked {
 public:
  // What the object serves as, for messages: "column".
  LateBound(Engine& engine, duk_idx_t index, std::string_view serves) : ScriptBacked(engine, index), serves_(serves) {}

 protected:
  // What a member answers.
  template <typename... A>
  Value Ask(const char* member, A&&... arguments) {
    Value answer;
    Reach(member, [&](Engine& engine) {
      PushAnswer(engine, member, arguments...);
      answer = ValueAt(engine, -1);
    });
    return answer;
  }

  template <typename... A>
  std::string AskText(const char* member, A&&... arguments) {
    std::string answer;
    Reach(member, [&](Engine& engine) {
      PushAnswer(engine, member, arguments...);
      answer = TextOf(engine, -1);
    });
    return answer;
  }

  // Runs a step that reaches for a member with the engine, its errors turned into ours and its stack restored.
  template <std::invocable<Engine&> Step>
  void Reach(std::string_view member, Step&& step) const {
    Engine& engine = Reference().Home();
    engine.Protected(Named(member), [&] {
      duk_require_stack(engine.Context(), kStack);
      step(engine);
    });
  }

  // Leaves the answer on the top of the stack.
  template <typename... A>
  void PushAnswer(Engine& engine, const char* member, A&&... arguments) const {
    duk_context* context = engine.Context();
    if (!PushMember(engine, member)) return;
    (PushArgument(engine, arguments), ...);
    duk_call_method(context, sizeof...(A));
  }

  // Leaves a member on the stack: true when it is to be called, with its object above it.
  bool PushMember(Engine& engine, const char* member) const;

  bool Has(Engine& engine, const char* member) const;

  static void PushArgument(Engine& engine, std::string_view text) { PushText(engine.Context(), text); }
  static void PushArgument(Engine& engine, std::int32_t number) { duk_push_int(engine.Context(), number); }
  static void PushArgument(Engine& engine, std::int16_t number) { duk_push_int(engine.Context(), number); }
  static void PushArgument(Engine& engine, bool flag) { duk_push_boolean(engine.Context(), flag); }
  static void PushArgument(Engine& engine, Object& object) { PushObject(engine, object); }

  // "column: ConstructHTMLData"
  std::string Named(std::string_view member) const;

  // Notes that a member answered nothing where the library goes on without it.
  void NoteNoAnswer(Engine& engine, std::string_view member, std::string_view missing) const;

 private:
  static constexpr duk_idx_t kStack = 40;

  std::string_view serves_;
};

// True for a value that late binding calls: a function that is none of the callable intrinsic objects.
bool IsScriptFunction(duk_context* context, duk_idx_t index);

}  // namespace kalvo::host
