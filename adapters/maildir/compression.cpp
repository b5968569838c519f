#include "adapters/maildir/compression.h"

#include <gmime/gmime.h>

#include <algorithm>

namespace kalvo::maildir {

namespace {

// clang-format off
constexpr struct { std::string_view begins; Packing packing; } kPackings[] = {
  {"\x1F\x8B\x08",       Packing::Gzip},
  {"\x28\xB5\x2F\xFD",   Packing::Other},  // Zstandard
  {"BZh91AY&SY",         Packing::Other},
  {"\xFD" "7zXZ",        Packing::Other},
  {"Dovecot-LZ4\r\x2A",  Packing::Other},
};
// clang-format on

// A little that is packed can be a lot, so it is unpacked little by little.
constexpr std::size_t kStep = 4096;

}  // namespace

Packing PackingOf(std::string_view stored) {
  for (const auto& known : kPackings) {
    if (stored.starts_with(known.begins)) return known.packing;
  }
  return Packing::None;
}

std::optional<std::string> Unpacked(std::string_view stored, std::size_t limit) {
  std::string text;
  GMimeFilter* unpacker = g_mime_filter_gzip_new(GMIME_FILTER_GZIP_MODE_UNZIP, 0);
  while (!stored.empty() && text.size() < limit) {
    const std::string_view step = stored.substr(0, kStep);
    char* out = nullptr;
    std::size_t size = 0, before = 0;
    g_mime_filter_filter(unpacker, const_cast<char*>(step.data()), step.size(), 0, &out, &size, &before);
    text.append(out, std::min(size, limit - text.size()));
    stored.remove_prefix(step.size());
  }
  g_object_unref(unpacker);
  return text.empty() ? std::nullopt : std::optional(std::move(text));
}

}  // namespace kalvo::maildir
