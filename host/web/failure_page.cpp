#include "host/web/failure_page.h"

#include <fstream>

#include "host/script/text/text.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/encoding.h"

namespace kalvo::web {
namespace {

constexpr int kLinesAround = 3;

void AppendEncoded(std::string& out, std::string_view text) { AppendHtmlEncoded(out, host::WellFormed(text)); }

// The lines around a place, each with its number; nothing where the file cannot be read. The file was found below the
// site when the page was compiled.
void AppendExcerpt(std::string& out, const host::PageFailure& failure, const std::filesystem::path& site) {
  if (failure.line < 1) return;
  std::ifstream in(site / failure.file, std::ios::binary);
  std::string line;
  out += "<pre>";
  for (int number = 1; number <= failure.line + kLinesAround && std::getline(in, line); ++number) {
    if (number < failure.line - kLinesAround) continue;
    Append(out, number == failure.line ? "&gt; " : "  ", number, "  ");
    if (line.ends_with('\r')) line.pop_back();
    AppendEncoded(out, line);
    out += '\n';
  }
  out += "</pre>\n";
}

void AppendPlaces(std::string& out, std::string_view how, std::span<const host::CodePlace> places) {
  for (const host::CodePlace& place : places) {
    Append(out, "<li>", how, ' ');
    AppendEncoded(out, place.file);
    Append(out, ':', place.line);
    if (!place.function.empty()) {
      out += " in ";
      AppendEncoded(out, place.function);
    }
    out += "</li>\n";
  }
}

}  // namespace

std::string FailureText(const host::PageFailure& failure, const std::filesystem::path& site) {
  return Built([&](std::string& out) {
    out += "<p><strong>";
    AppendEncoded(out, Describe(failure));
    out += "</strong></p>\n";
    AppendExcerpt(out, failure, site);
    out += "<ul>\n";
    AppendPlaces(out, "called from", failure.calls);
    AppendPlaces(out, "included from", failure.includes);
    out += "</ul>\n";
  });
}

std::string UnseenText(const host::PageResult& result, const std::filesystem::path& site) {
  if (result.unseen.empty()) return "";
  return Built([&](std::string& out) {
    Append(out, "<hr>\n<p>", result.unseenCount, " failures of this page's own functions:</p>\n");
    for (const host::PageFailure& failure : result.unseen) out += FailureText(failure, site);
  });
}

std::string BrokenEnd() { return "\n<hr><p><strong>The page failed here and is not complete.</strong></p>\n"; }

}  // namespace kalvo::web
