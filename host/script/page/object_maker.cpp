#include "host/script/page/object_maker.h"

#include "host/script/page/classes.h"
#include "kalvo/platform/error.h"

namespace kalvo::host {
namespace {

const ClassBinding& PublicClass(std::string_view name) {
  const ClassBinding* binding = FindPublicClass(name);
  if (binding == nullptr) throw CannotCreateObject();
  return *binding;
}

}  // namespace

std::shared_ptr<Object> ObjectMaker::Make(std::string_view name) const { return PublicClass(name).make(platform_); }

std::shared_ptr<Object> ObjectMaker::MakeStarted(std::string_view name, ScriptingContext& context) {
  const ClassBinding& binding = PublicClass(name);
  std::shared_ptr<Object> object = binding.make(platform_);
  if (binding.start == nullptr) return object;
  engine_.Charge(static_cast<std::ptrdiff_t>(binding.bytes));  // kept to the page's end
  started_.push_back({object, &binding});
  binding.start(*object, context);
  return object;
}

void ObjectMaker::EndAll() {
  for (const Started& started : started_) {
    engine_.Attempt([&] { started.binding->end(*started.object); });
  }
}

}  // namespace kalvo::host
