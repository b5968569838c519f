#pragma once

#include <filesystem>
#include <span>
#include <string>

#include "host/script/page/page_result.h"

namespace kalvo::web {

// Why a page failed, as HTML for its author: file, line, message, the lines around and the way there. Files are read
// from the site's folder; nothing is shown but lines of the file that failed.
std::string FailureText(const host::PageFailure& failure, const std::filesystem::path& site);

// The same of what functions of the page's own failed with while the library went on; "" for nothing.
std::string UnseenText(const host::PageResult& result, const std::filesystem::path& site);

// What ends a page visibly that failed after its head was sent.
std::string BrokenEnd();

}  // namespace kalvo::web
