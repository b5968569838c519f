#include "host/script/binding/wrappers.h"

#include <algorithm>
#include <typeinfo>
#include <utility>

#include "host/script/binding/explanation.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"

namespace kalvo::host {

// What a wrapper holds: the object, and the wrapper itself, because an object that inherits from a wrapper sees the
// wrapper's holder too.
struct WrapperHolder {
  std::shared_ptr<Object> object;
  void* wrapper;
  std::ptrdiff_t bytes;  // counted to the page's memory while the wrapper lives
};

namespace {

using Holder = WrapperHolder;

constexpr const char* kHolder = DUK_HIDDEN_SYMBOL("holder");

// A function of a class knows its class and its member by its number.
constexpr int kMembersPerClass = 128;

Wrappers& WrappersOf(duk_context* context) { return static_cast<Wrappers&>(Engine::Of(context).Bridge()); }

const ClassBinding& CalledClass(duk_context* context) {
  const auto number = static_cast<std::size_t>(duk_get_current_magic(context) / kMembersPerClass);
  return WrappersOf(context).Classes()[number];
}

const Member& CalledMember(duk_context* context) {
  const auto number = static_cast<std::size_t>(duk_get_current_magic(context) % kMembersPerClass);
  return CalledClass(context).members()[number];
}

Holder* HolderAt(duk_context* context, duk_idx_t index) {
  if (!duk_is_object(context, index)) return nullptr;
  duk_get_prop_string(context, index, kHolder);
  auto* holder = static_cast<Holder*>(duk_get_pointer_default(context, -1, nullptr));
  duk_pop(context);
  return holder;
}

duk_ret_t Finalize(duk_context* context) {
  Holder* holder = HolderAt(context, 0);
  if (!holder || holder->wrapper != duk_get_heapptr(context, 0)) return 0;
  duk_push_pointer(context, nullptr);
  duk_put_prop_string(context, 0, kHolder);
  Engine& engine = Engine::Of(context);
  WrappersOf(context).Forget(*holder->object);
  engine.Charge(-holder->bytes);
  delete holder;
  return 0;
}

// ---- calls ----------------------------------------------------------------------------------------------

using Run = void (*)(CallFrame&);

// Runs a member. What it fails with goes to script with the member, the argument and its value named; script gets it
// itself, so what was noted of it on the way is forgotten.
duk_ret_t RunMember(duk_context* context, const std::shared_ptr<Object>& self, std::string_view name,
                    std::span<const Parameter> parameters, std::size_t given, Run run) {
  if (!self) throw ExplainedError(ObjectRequired(), NotOnItsObject(name));
  Engine& engine = Engine::Of(context);
  engine.CheckLimits();
  CallFrame frame{engine, *self, parameters, given};
  const std::size_t noted = engine.NotedFailures().size();
  try {
    run(frame);
  } catch (const Error& error) {
    engine.ForgetNote(noted, error);
    throw ExplainedError(error, Explained(frame, name, error));
  }
  return 1;
}

duk_ret_t CallMember(duk_context* context) {
  return Engine::Guarded(context, [&] {
    const Member& member = CalledMember(context);
    const auto given = static_cast<std::size_t>(duk_get_top(context));
    duk_set_top(context, static_cast<duk_idx_t>(member.parameterCount));
    duk_push_this(context);
    const std::shared_ptr<Object> self = NativeAt(context, -1);
    duk_pop(context);
    return RunMember(context, self, member.name, member.Parameters(), given, member.call);
  });
}

duk_ret_t GetProperty(duk_context* context) {
  return Engine::Guarded(context, [&] {
    duk_set_top(context, 0);
    duk_push_this(context);
    const Member& member = CalledMember(context);
    return RunMember(context, NativeAt(context, -1), member.name, {}, 0, member.call);
  });
}

duk_ret_t SetProperty(duk_context* context) {
  return Engine::Guarded(context, [&] {
    static constexpr Parameter kValue[] = {{"value"}};
    const Member& member = CalledMember(context);
    if (!member.set) throw ExplainedError(MemberNotSupported(), OnlyRead(member.name));
    duk_set_top(context, 1);
    duk_push_this(context);
    RunMember(context, NativeAt(context, -1), member.name, kValue, 1, member.set);
    return 0;
  });
}

// An object that is called as a function: Session("name").
duk_ret_t CallObject(duk_context* context) {
  return Engine::Guarded(context, [&] {
    static constexpr Parameter kKey[] = {{"key"}};
    const auto given = static_cast<std::size_t>(duk_get_top(context));
    duk_set_top(context, 1);
    duk_push_current_function(context);
    const std::shared_ptr<Object> self = NativeAt(context, -1);
    const ClassBinding& binding = CalledClass(context);
    duk_pop(context);
    return RunMember(context, self, binding.name, kKey, given, binding.call);
  });
}

// ---- prototypes -----------------------------------------------------------------------------------------

void PushFunction(duk_context* context, duk_c_function function, int magic, const Member& member) {
  duk_push_c_function(context, function, DUK_VARARGS);
  duk_set_magic(context, -1, magic);
  duk_push_literal(context, "name");
  PushText(context, member.name);
  duk_def_prop(context, -3, DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_SET_CONFIGURABLE | DUK_DEFPROP_FORCE);
}

void DefineMember(duk_context* context, const Member& member, int magic) {
  PushText(context, member.name);
  if (member.kind == MemberKind::Method) {
    PushFunction(context, CallMember, magic, member);
    duk_def_prop(context, -3, DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_SET_CONFIGURABLE | DUK_DEFPROP_SET_WRITABLE);
    return;
  }
  PushFunction(context, GetProperty, magic, member);
  PushFunction(context, SetProperty, magic, member);
  duk_def_prop(context, -4, DUK_DEFPROP_HAVE_GETTER | DUK_DEFPROP_HAVE_SETTER | DUK_DEFPROP_SET_CONFIGURABLE);
}

// Leaves the prototype of a class on the stack; it is made when its first object is.
void PushPrototype(duk_context* context, const ClassBinding& binding, std::size_t index) {
  duk_push_heap_stash(context);
  duk_get_prop_literal(context, -1, "prototypes");
  duk_remove(context, -2);
  if (!duk_get_prop_index(context, -1, static_cast<duk_uarridx_t>(index))) {
    duk_pop(context);
    duk_push_object(context);
    const std::span<const Member> members = binding.members();
    for (std::size_t i = 0; i < members.size(); ++i) {
      DefineMember(context, members[i], static_cast<int>(index * kMembersPerClass + i));
    }
    duk_push_c_function(context, Finalize, 1);
    duk_set_finalizer(context, -2);
    duk_dup_top(context);
    duk_put_prop_index(context, -3, static_cast<duk_uarridx_t>(index));
  }
  duk_remove(context, -2);
}

}  // namespace

std::shared_ptr<Object> Wrappers::At(duk_context* context, duk_idx_t index) const {
  const Holder* holder = HolderAt(context, index);
  return holder ? holder->object : nullptr;
}

void Wrappers::PrepareClasses(duk_context* context, std::span<const ClassBinding> classes) {
  for (std::size_t i = 0; i < classes.size(); ++i) {
    PushPrototype(context, classes[i], i);
    duk_pop(context);
  }
}

// An object may hold another, and ask for its place in the list when it goes.
void Wrappers::ReleaseAll() {
  const auto released = std::exchange(wrappers_, {});
  for (const auto& [object, holder] : released) delete holder;
}

void Wrappers::Push(Engine& engine, const std::shared_ptr<Object>& object) {
  const auto known = wrappers_.find(object.get());
  if (known != wrappers_.end()) {
    duk_push_heapptr(engine.Context(), known->second->wrapper);
  } else {
    PushNew(engine, object);
  }
}

std::optional<ObjectBridge::Member> Wrappers::FindMember(const void* prototype, std::string_view name) const {
  const auto found = std::find(prototypes_.begin(), prototypes_.end(), prototype);
  if (found == prototypes_.end()) return std::nullopt;
  const ClassBinding& binding = classes_[static_cast<std::size_t>(found - prototypes_.begin())];
  for (const host::Member& member : binding.members()) {
    if (member.name != name && EqualsIgnoringAsciiCase(member.name, name)) return Member{binding.name, member.name};
  }
  return Member{binding.name, ""};
}

std::size_t Wrappers::ClassIndexOf(const Object& object) const {
  for (std::size_t i = 0; i < classes_.size(); ++i) {
    if (classes_[i].owns(object)) return i;
  }
  throw MemberNotSupported();
}

void Wrappers::PushNew(Engine& engine, const std::shared_ptr<Object>& object) {
  duk_context* context = engine.Context();
  const std::size_t index = ClassIndexOf(*object);
  const ClassBinding& binding = classes_[index];
  const auto bytes = static_cast<std::ptrdiff_t>(binding.bytes);
  if (binding.call) {
    duk_push_c_function(context, CallObject, DUK_VARARGS);
    duk_set_magic(context, -1, static_cast<duk_int_t>(index * kMembersPerClass));
    duk_del_prop_literal(context, -1, "length");
    duk_del_prop_literal(context, -1, "name");
  } else {
    duk_push_object(context);
  }
  // The place in the table and the holder come first: whatever is refused later, the finalizer finds both.
  duk_push_pointer(context, nullptr);
  duk_put_prop_string(context, -2, kHolder);
  PushPrototype(context, binding, index);
  prototypes_[index] = duk_get_heapptr(context, -1);
  duk_set_prototype(context, -2);
  engine.Charge(bytes);
  Holder*& holder = wrappers_[object.get()];
  holder = new Holder{object, duk_get_heapptr(context, -1), bytes};
  duk_push_pointer(context, holder);
  duk_put_prop_string(context, -2, kHolder);
  if (binding.decorate) binding.decorate(engine, *object);
}

}  // namespace kalvo::host
