#pragma once

#include "host/script/binding/arguments.h"

namespace kalvo::host {

// What happens when an intrinsic object is called: `Request("a")`, `Request.QueryString("a")`, `Session("a")`.
void CallRequest(CallFrame& frame);
void CallNameCollection(CallFrame& frame);
void CallValueList(CallFrame& frame);
void CallSession(CallFrame& frame);
void CallSessionContents(CallFrame& frame);
void CallResponseCookies(CallFrame& frame);
void CallApplication(CallFrame& frame);

// Gives a collection its keys as enumerable properties, in their order.
void DecorateNameCollection(Engine& engine, const Object& object);
void DecorateSessionContents(Engine& engine, const Object& object);

}  // namespace kalvo::host
