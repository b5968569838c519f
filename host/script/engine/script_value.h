#pragma once

#include <memory>

#include "host/script/engine/engine.h"
#include "host/script/engine/engine_text.h"
#include "kalvo/platform/value.h"

namespace kalvo::host {

// A script value kept alive from the program's side, until it is dropped or the engine closes.
class ScriptReference {
 public:
  ScriptReference(Engine& engine, duk_idx_t index);
  ~ScriptReference();
  ScriptReference(const ScriptReference&) = delete;
  ScriptReference& operator=(const ScriptReference&) = delete;

  // Fails with 424 once the engine has closed.
  Engine& Home() const;
  void Push() const;

 private:
  std::shared_ptr<Engine*> home_;  // emptied when the engine closes
  duk_uarridx_t slot_ = 0;
};

// Whatever the program holds of a script object carries its reference, so that script gets its own object back.
class ScriptBacked {
 public:
  explicit ScriptBacked(Engine& engine, duk_idx_t index) : reference_(engine, index) {}
  virtual ~ScriptBacked() = default;
  const ScriptReference& Reference() const { return reference_; }

 private:
  ScriptReference reference_;
};

// A script object that no operation of ours looks into.
class OpaqueScriptObject : public Object, public ScriptBacked {
 public:
  OpaqueScriptObject(Engine& engine, duk_idx_t index) : ScriptBacked(engine, index) {}
};

// A value on the stack as a loosely typed value: undefined is empty, whole numbers of 32 bits are integers, dates
// are dates; one that is no moment fails where it is used. An object stays an object; a symbol fails with 13.
Value ValueAt(Engine& engine, duk_idx_t index);

// The text of a value as the program writes values: "True", "1E+20", ""; dates as the page's locale has them.
std::string TextOf(const Engine& engine, const Value& value);

// The same of a value on the stack.
std::string TextOf(Engine& engine, duk_idx_t index);

// Pushes a value: 64-bit integers as numbers, dates as Date objects of the local time.
void PushValue(Engine& engine, const Value& value);

// An object that is its text wherever a value is taken: the values of a request's key, a collection.
class TextObject : public Object {
 public:
  virtual std::string Text() const = 0;
};

// Pushes the one script object that stands for an object of the program; null for none.
void PushObject(Engine& engine, const std::shared_ptr<Object>& object);
void PushObject(Engine& engine, Object& object);

// The program's object behind a script object; null for a script object of its own.
std::shared_ptr<Object> NativeAt(duk_context* context, duk_idx_t index);

}  // namespace kalvo::host
