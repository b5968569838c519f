#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "host/script/binding/class_binding.h"

namespace kalvo::host {

// Makes the objects of the public classes for one page, and tells those that it started of the page's end.
class ObjectMaker {
 public:
  // Both outlive it.
  ObjectMaker(Engine& engine, const Platform& platform) : engine_(engine), platform_(platform) {}

  // An object of a public class; fails with 429 for a class that there is not.
  std::shared_ptr<Object> Make(std::string_view name) const;

  // The same, told of the page's start at once and of its end later.
  std::shared_ptr<Object> MakeStarted(std::string_view name, ScriptingContext& context);

  // Tells the started objects of the page's end, in the order of their making. What fails there has no page to fail.
  void EndAll();

 private:
  struct Started {
    std::shared_ptr<Object> object;
    const ClassBinding* binding;
  };

  Engine& engine_;
  const Platform& platform_;
  std::vector<Started> started_;
};

}  // namespace kalvo::host
