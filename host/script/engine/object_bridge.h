#pragma once

#include <memory>
#include <optional>
#include <string_view>

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

  // Where objects of this prototype stand for the program's: the name of their class, and the published spelling of a
  // member, "" for one that there is in no spelling. Nothing for a prototype of script's own.
  struct Member {
    std::string_view className;
    std::string_view name;
  };
  virtual std::optional<Member> FindMember(const void* prototype, std::string_view name) const = 0;
};

}  // namespace kalvo::host
