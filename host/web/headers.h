#pragma once

#include <string>
#include <string_view>

#include "host/script/page/page_directive.h"
#include "host/script/page/page_result.h"

namespace kalvo::web {

// The headers that tell browsers what an answer may do. Every answer has them, whoever makes it: nginx adds those of
// `AppendHeaders`, a worker those that differ from page to page.

// What kind of answer a location of nginx gives.
enum class Answers { Files, ErrorPages, Pages };

// nginx's directives for a block, each on a line that begins with `indent`. A block with a header of its own inherits
// none, so it needs them again. `encrypted` ones tell browsers to come encrypted from now on.
void AppendHeaders(std::string& out, Answers answers, bool encrypted, std::string_view indent = "");

// The content policy of a page: scripts and styles from this console's files, the delete form's own handler, and what
// the page declares.
std::string ContentPolicy(const host::PageDirective& directive);

// Adds what only the worker knows: the policy, and that nobody keeps the page, unless the page itself says who may.
void AddHeaders(host::PageHead& head, std::string policy);

}  // namespace kalvo::web
