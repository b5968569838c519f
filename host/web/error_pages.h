#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace kalvo::web {

// What a visitor is told instead of a page. Nothing of the inside is told; that is in the log.
struct ErrorPage {
  int status;
  std::string_view reason;
  std::string_view text;
};

// Every status that the server answers by itself, in ascending order.
std::span<const ErrorPage> ErrorPages();

// Writes the page of each status into a folder as "404.html": the one in `custom` where there is one, a plain
// one otherwise. Fails with SettingError.
void WriteErrorPages(const std::filesystem::path& folder, const std::filesystem::path& custom);

// The reason phrase of a status that `ErrorPages` has.
std::string_view ReasonOf(int status);

// The page of a status, from a folder that `WriteErrorPages` filled, with `why` as its last paragraph where the visitor
// can mend what was wrong.
std::string ReadErrorPage(const std::filesystem::path& folder, int status, std::string_view why = "");

}  // namespace kalvo::web
