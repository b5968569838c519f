#pragma once

#include "host/script/engine/kalvo_duktape.h"

namespace kalvo::host {

// Puts what pages of others count on into the global object on the top of the stack: `Enumerator`, made from its text
// when a page first asks for it, and `number` and `description` of every error.
void InstallHelpers(duk_context* context);

}  // namespace kalvo::host
