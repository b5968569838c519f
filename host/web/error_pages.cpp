#include "host/web/error_pages.h"

#include <algorithm>
#include <optional>

#include "base/file.h"
#include "host/web/run_folder.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/encoding.h"

namespace kalvo::web {
namespace {

namespace fs = std::filesystem;

// clang-format off
constexpr ErrorPage kErrorPages[] = {
  {400, "Bad Request",                     "The address or the request could not be understood."},
  {403, "Forbidden",                       "This is not for you to see."},
  {404, "Not Found",                       "There is no page at this address."},
  {405, "Method Not Allowed",              "Pages are read or posted to, nothing else."},
  {408, "Request Timeout",                 "The request took too long to arrive."},
  {413, "Content Too Large",               "What was posted is too large."},
  {414, "URI Too Long",                    "The address is too long."},
  {421, "Misdirected Request",             "This server is not known by that name."},
  {431, "Request Header Fields Too Large", "The request's headers are too large."},
  {500, "Internal Server Error",           "The page could not be made. The administrator finds the reason in the log."},
  {503, "Service Unavailable",             "Too much is being asked at the moment. Please try again in a few seconds."},
  {504, "Gateway Timeout",                 "The page took too long to make."},
};
// clang-format on

std::string PlainPage(const ErrorPage& page) {
  std::string html;
  Append(html, "<!DOCTYPE html>\n<html lang=\"en\">\n<head><meta charset=\"utf-8\"><title>", page.reason,
         "</title></head>\n<body>\n<h1>", page.reason, "</h1>\n<p>", page.text, "</p>\n</body>\n</html>\n");
  return html;
}

std::string NameOf(int status) { return std::to_string(status) + ".html"; }

}  // namespace

std::span<const ErrorPage> ErrorPages() { return kErrorPages; }

void WriteErrorPages(const fs::path& folder, const fs::path& custom) {
  fs::create_directories(folder);
  for (const ErrorPage& page : kErrorPages) {
    const auto own = custom.empty() ? std::nullopt : base::ReadFile(custom / NameOf(page.status));
    WriteFile(folder / NameOf(page.status), own ? *own : PlainPage(page));
  }
}

std::string_view ReasonOf(int status) {
  for (const ErrorPage& page : kErrorPages) {
    if (page.status == status) return page.reason;
  }
  return "Error";
}

std::string ReadErrorPage(const fs::path& folder, int status, std::string_view why) {
  std::string content = base::ReadFile(folder / NameOf(status)).value_or(std::string(ReasonOf(status)));
  if (why.empty()) return content;
  std::string paragraph = "<p>";
  AppendHtmlEncoded(paragraph, why);
  paragraph += "</p>\n";
  return content.insert(std::min(content.rfind("</body>"), content.size()), paragraph);
}

}  // namespace kalvo::web
