#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/script/binding/class_binding.h"
#include "host/script/engine/object_bridge.h"

namespace kalvo::host {

struct WrapperHolder;

// The script objects that stand for objects of the program in one script state: each has one, made when script first
// sees it, with the members of its class. It outlives the state, and is the bridge of that state alone.
class Wrappers : public ObjectBridge {
 public:
  explicit Wrappers(std::span<const ClassBinding> classes) : classes_(classes), prototypes_(classes.size()) {}

  void Push(Engine& engine, const std::shared_ptr<Object>& object) override;
  std::shared_ptr<Object> At(duk_context* context, duk_idx_t index) const override;
  void ReleaseAll() override;

  // Makes what the objects of a class share, of all classes, in a state that others begin as.
  static void PrepareClasses(duk_context* context, std::span<const ClassBinding> classes);

  std::optional<Member> FindMember(const void* prototype, std::string_view name) const override;

  std::span<const ClassBinding> Classes() const { return classes_; }

  // How many objects have one now.
  std::size_t Count() const { return wrappers_.size(); }

  // An object whose script object is gone.
  void Forget(const Object& object) { wrappers_.erase(&object); }

 private:
  std::size_t ClassIndexOf(const Object& object) const;
  void PushNew(Engine& engine, const std::shared_ptr<Object>& object);

  std::span<const ClassBinding> classes_;
  std::vector<const void*> prototypes_;                       // of each class; null until its first object is made
  std::unordered_map<const void*, WrapperHolder*> wrappers_;  // by the address of the program's objects
};

}  // namespace kalvo::host
