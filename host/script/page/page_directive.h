#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kalvo::host {

// What a page's first line declares beside its language. Each word is checked: it is what its comment says.
struct PageDirective {
  std::vector<std::string> sortWords;  // names that links of the page's own tables sort by: letters, digits, "_", "."
  std::vector<std::string> handlers;   // "sha256-..." of event handlers and scripts in the page's text
  std::vector<std::string> styles;     // "sha256-..." of style attributes and style sheets in the page's text
  bool ownIdentifiers = false;         // the page's live container is its own, and so is the form of its identifiers
};

// What is wrong with an attribute, and what would be right.
struct DirectiveFault {
  std::string message;
};

// Reads the first line, from "<%@" to "%>": SortWords="Owner, d.Size" Handlers="sha256-..." Styles="sha256-..."
// Identifiers="own". Names are matched without regard to case; other attributes are passed over. Throws DirectiveFault.
PageDirective ParseDirective(std::string_view line);

}  // namespace kalvo::host
