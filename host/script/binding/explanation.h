#pragma once

#include <string>
#include <string_view>

#include "host/script/binding/arguments.h"

namespace kalvo::host {

// What an error of an operation tells a page's author beside its description: 'BuildTable: tableId: "TABLE_X" is no
// number', "BuildTable: Subscript out of range (tableId was left out)". The number and the description stay as they
// are.
std::string Explained(const CallFrame& frame, std::string_view operation, const Error& error);

// For a member that was taken off its object, and for a property that is written and can only be read.
std::string NotOnItsObject(std::string_view operation);
std::string OnlyRead(std::string_view property);

}  // namespace kalvo::host
