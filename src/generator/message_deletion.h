#pragma once

#include <string>

namespace kalvo {

class Context;

// Deletes the message that the delete form names. Nothing is trapped: a failing step is the caller's, and `step` says
// which it was, or why nothing was done. True when the message was deleted.
bool DeleteNamedMessage(Context& context, std::string& step);

}  // namespace kalvo
