#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kalvo::host {

// Where the next "<script ... runat="server"" of a text begins, or the text's end. Scripts of the browser are text.
std::size_t FindServerScript(std::string_view text, std::size_t from);

// Where the "</script" of an element begins whose first tag ends at `from`; `from` for one that is closed in itself,
// npos where there is none.
std::size_t FindEndTag(std::string_view text, std::size_t from);

// An attribute of a tag or of a page's directive, its name in any case: src="x", src='x' or src=x. Nothing where there
// is none.
std::optional<std::string> AttributeOf(std::string_view tag, std::string_view name);

}  // namespace kalvo::host
