#include "fuzz/targets.h"

namespace kalvo::test {

std::span<const Target> Targets() {
  // clang-format off
  static constexpr Target kTargets[] = {
    {"page_parser",    PageParser},
    {"query_and_form", QueryAndForm},
    {"edge",           Edge},
    {"sql_tokens",     SqlTokens},
    {"utf8",           Utf8},
    {"imap_guard",     ImapGuard},
    {"mime_message",   MimeMessage},
  };
  // clang-format on
  return kTargets;
}

}  // namespace kalvo::test
