#pragma once

#include <string>

#include "host/script/classes.h"

namespace kalvo::host {

// Appends what an object is as text: the values of a key, a collection. False for one that has no text.
bool AppendDefaultText(std::string& out, const Object& object);

}  // namespace kalvo::host
