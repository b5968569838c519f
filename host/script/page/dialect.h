#pragma once

#include <string>
#include <string_view>

namespace kalvo::host {

// The one thing that pages write and the language has not: `Session("a") = v` and `Response.Cookies("a") = v`. A call
// of these two left of an assignment becomes an object with a `value`. Nothing else is touched, and every line stays in
// its place.
std::string WithAssignableItems(std::string script);

// What a script that does not compile uses of a newer language, at the line or the last one before it: "=>", "let".
// "" where nothing of it is met.
std::string NewerSyntax(std::string_view script, int line);

}  // namespace kalvo::host
