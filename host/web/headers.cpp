#include "host/web/headers.h"

#include <algorithm>
#include <vector>

#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::web {
namespace {

struct Header {
  std::string_view name, value;
};

// clang-format off
constexpr Header kHeaders[] = {
  {"X-Content-Type-Options",       "nosniff"},
  {"Referrer-Policy",              "same-origin"},
  {"Cross-Origin-Opener-Policy",   "same-origin"},
  {"Cross-Origin-Resource-Policy", "same-origin"},
  {"X-Frame-Options",              "SAMEORIGIN"},   // what `frame-ancestors` says, for browsers that do not know it
};
// clang-format on

constexpr std::string_view kPolicy = "Content-Security-Policy";
constexpr std::string_view kKeeping = "Cache-Control";
constexpr std::string_view kKeptByNobody = "no-store";
// A file changes with the program alone, and a page has many: a browser asks for each once in a while.
constexpr std::string_view kKeptForAWhile = "max-age=300";

// The handler of the delete-message form, `return ConfirmDeleteMessage()`.
constexpr std::string_view kDeleteHandler = "sha256-BpXhXx2vRLHwaBAlwgc7ySqE/qjSuaDmk4N/0EX3KB4=";

void AppendHashes(std::string& out, const std::vector<std::string>& hashes) {
  for (const std::string& hash : hashes) Append(out, " '", hash, "'");
}

void AppendLine(std::string& out, std::string_view indent, std::string_view name, std::string_view value) {
  Append(out, indent, "add_header ", name, " \"", value, "\" always;\n");
}

}  // namespace

void AppendHeaders(std::string& out, Answers answers, bool encrypted, std::string_view indent) {
  for (const Header& header : kHeaders) AppendLine(out, indent, header.name, header.value);
  if (encrypted) AppendLine(out, indent, "Strict-Transport-Security", "max-age=31536000");
  if (answers == Answers::Pages) return;
  AppendLine(out, indent, kPolicy, ContentPolicy({}));
  AppendLine(out, indent, kKeeping, answers == Answers::Files ? kKeptForAWhile : kKeptByNobody);
}

std::string ContentPolicy(const host::PageDirective& directive) {
  return Built([&](std::string& out) {
    Append(out, "default-src 'self'; script-src 'self' 'unsafe-hashes' '", kDeleteHandler, "'");
    AppendHashes(out, directive.handlers);
    out += "; style-src 'self'";
    if (!directive.styles.empty()) out += " 'unsafe-hashes'";
    AppendHashes(out, directive.styles);
    out += "; object-src 'none'; base-uri 'none'; form-action 'self'; frame-ancestors 'self'";
  });
}

void AddHeaders(host::PageHead& head, std::string policy) {
  head.headers.emplace_back(kPolicy, std::move(policy));
  const bool says = std::any_of(head.headers.begin(), head.headers.end(),
                                [](const auto& header) { return EqualsIgnoringAsciiCase(header.first, kKeeping); });
  if (!says) head.headers.emplace_back(kKeeping, kKeptByNobody);
}

}  // namespace kalvo::web
