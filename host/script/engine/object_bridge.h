#pragma once

#include <memory>

#include "host/script/engine/kalvo_duktape.h"
#include "kalvo/platform/value.h"

namespace kalvo::host {

class Engine;

// How objects of the program and objects of script stand for each other. It is all that a script state knows of whoever
// runs it.
class ObjectBridge {
 public:
  virtual ~ObjectBridge() = default;

  // Leaves on the stack the one script object that stands for an object of the program.
  virtual void Push(Engine& engine, const std::shared_ptr<Object>& object) = 0;

  // The program's object behind the script object at a place of the stack; null for one of script's own.
  virtual std::shared_ptr<Object> At(duk_context* context, duk_idx_t index) const = 0;

  // Lets go of the program's objects: the state ends without asking what stands for them.
  virtual void ReleaseAll() = 0;
};

}  // namespace kalvo::host
