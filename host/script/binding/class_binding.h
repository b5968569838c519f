#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "host/script/binding/binding.h"
#include "kalvo/platform/page_host.h"
#include "kalvo/platform/platform.h"

namespace kalvo::host {

// A class as scripts see it.
struct ClassBinding {
  std::string_view name;  // "Display"; scripts make a public class as "KalvoTables.Display"

  // Whether the object is one of this class, for an object whose class is asked for the first time.
  bool (*owns)(const Object& object) = nullptr;
  std::span<const Member> (*members)() = nullptr;

  // Makes a new one; null for a class that scripts cannot make.
  std::shared_ptr<Object> (*make)(const Platform& platform) = nullptr;
  std::size_t bytes = 0;  // about what one takes, counted to the page's memory

  // Tell an object that `Server.CreateObject` made of the page's start and end; null where it has no such operation.
  void (*start)(Object& object, ScriptingContext& context) = nullptr;
  void (*end)(Object& object) = nullptr;

  // For a class whose objects are called as functions: pushes one value.
  void (*call)(CallFrame& frame) = nullptr;
  // For a class whose objects carry enumerable properties: defines them on the object on the top of the stack.
  void (*decorate)(Engine& engine, const Object& object) = nullptr;
};

// A member as documents name it: "AnchorStart(szLink, szBookmark = \"\", szTarget = \"\")", "TableIndex" for a property
// that is read, "gRowIndex*" for one that is also written.
std::string Signature(const Member& member);

}  // namespace kalvo::host
