#pragma once

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "bench/peers/typed_rows.h"

// Writes the text of a page into room that its caller has made: as fast as it goes by hand, and nothing is checked.
namespace kalvo::peers {

struct PenTables {
  std::array<bool, 256> isPlainHtml{}, isPlainUrl{};
  std::array<std::array<char, 2>, 256> hexadecimal{};
  std::array<std::array<char, 2>, 100> twoDigits{};

  constexpr PenTables() {
    constexpr std::string_view kHex = "0123456789ABCDEF";
    for (std::size_t c = 0; c < 256; ++c) {
      isPlainHtml[c] = c != '&' && c != '<' && c != '>' && c != '"';
      isPlainUrl[c] = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
      hexadecimal[c] = {kHex[c / 16], kHex[c % 16]};
    }
    for (std::size_t i = 0; i < 100; ++i) {
      twoDigits[i] = {static_cast<char>('0' + i / 10), static_cast<char>('0' + i % 10)};
    }
  }
};
inline constexpr PenTables kPen;

// A place to write at, passed by value so that it stays in a register. kBlocks: texts are encoded 16 bytes at a time.
template <bool kBlocks>
struct Pen {
  char* at;

  template <std::size_t N>
  Pen& operator<<(const char (&text)[N]) {
    std::memcpy(at, text, N - 1);
    at += N - 1;
    return *this;
  }
  Pen& operator<<(std::string_view text) {
    std::memcpy(at, text.data(), text.size());
    at += text.size();
    return *this;
  }
  Pen& operator<<(char c) {
    *at++ = c;
    return *this;
  }

  Pen& Entity(char c) {
    switch (c) {
      case '&': return *this << "&amp;";
      case '<': return *this << "&lt;";
      case '>': return *this << "&gt;";
      default: return *this << "&quot;";
    }
  }

  Pen& Html(std::string_view text) {
#if defined(__SSE2__)
    if constexpr (kBlocks) return HtmlByBlocks(text);
#endif
    for (const char c : text) {
      if (kPen.isPlainHtml[static_cast<unsigned char>(c)]) [[likely]] {
        *at++ = c;
      } else {
        Entity(c);
      }
    }
    return *this;
  }

#if defined(__SSE2__)
  // Reads and writes up to 15 bytes behind the text.
  Pen& HtmlByBlocks(std::string_view text) {
    const char* from = text.data();
    for (std::size_t left = text.size(); left > 0;) {
      const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(at), block);
      const auto is = [&](char c) { return _mm_cmpeq_epi8(block, _mm_set1_epi8(c)); };
      const __m128i marks = _mm_or_si128(_mm_or_si128(is('&'), is('<')), _mm_or_si128(is('>'), is('"')));
      std::size_t taken = left < 16 ? left : 16;
      const unsigned found = static_cast<unsigned>(_mm_movemask_epi8(marks)) & ((1U << taken) - 1);
      if (found == 0) [[likely]] {
        at += taken;
      } else {
        taken = static_cast<std::size_t>(__builtin_ctz(found));
        at += taken;
        Entity(from[taken++]);
      }
      from += taken;
      left -= taken;
    }
    return *this;
  }
#endif

  // A value in an address. Nothing of it needs to be encoded for HTML.
  Pen& Url(std::string_view text) {
    for (const char c : text) {
      const auto byte = static_cast<unsigned char>(c);
      if (kPen.isPlainUrl[byte]) [[likely]] {
        *at++ = c;
      } else if (c == ' ') {
        *at++ = '+';
      } else {
        *at++ = '%';
        Two(kPen.hexadecimal[byte]);
      }
    }
    return *this;
  }

  Pen& Two(const std::array<char, 2>& pair) {
    std::memcpy(at, pair.data(), 2);
    at += 2;
    return *this;
  }

  Pen& OneOrTwo(unsigned number) {
    return number < 10 ? *this << static_cast<char>('0' + number) : Two(kPen.twoDigits[number]);
  }

  Pen& Number(std::int64_t number) {
    if (number < 0) *this << '-';
    auto left = static_cast<std::uint64_t>(number < 0 ? -number : number);
    char digits[20];
    char* first = digits + sizeof digits;
    do *--first = static_cast<char>('0' + left % 10);
    while (left /= 10);
    return *this << std::string_view(first, static_cast<std::size_t>(digits + sizeof digits - first));
  }

  // "1,234,567"
  Pen& Grouped(std::int64_t number) {
    auto left = static_cast<std::uint64_t>(number);
    char digits[28];
    char* first = digits + sizeof digits;
    for (; left >= 1000; left /= 1000) {
      const auto group = static_cast<unsigned>(left % 1000);
      first -= 4;
      first[0] = ',';
      first[1] = static_cast<char>('0' + group / 100);
      std::memcpy(first + 2, kPen.twoDigits[group % 100].data(), 2);
    }
    do *--first = static_cast<char>('0' + left % 10);
    while (left /= 10);
    return *this << std::string_view(first, static_cast<std::size_t>(digits + sizeof digits - first));
  }

  // "1,234.50MB"
  Pen& Megabytes(std::int64_t bytes) {
    constexpr std::int64_t kMegabyte = 1 << 20;
    const std::int64_t hundredths = (bytes * 100 + kMegabyte / 2) / kMegabyte;
    Grouped(hundredths / 100) << '.';
    return Two(kPen.twoDigits[static_cast<std::size_t>(hundredths % 100)]) << "MB";
  }

  // "1/2/2003 3:04:05 PM"; midnight is the day alone.
  Pen& Time(const Moment& time) {
    OneOrTwo(time.month) << '/';
    OneOrTwo(time.day) << '/';
    Two(kPen.twoDigits[time.year / 100]).Two(kPen.twoDigits[time.year % 100]);
    if ((time.hour | time.minute | time.second) == 0) return *this;
    *this << ' ';
    OneOrTwo(time.hour % 12 == 0 ? 12 : time.hour % 12) << ':';
    Two(kPen.twoDigits[time.minute]) << ':';
    Two(kPen.twoDigits[time.second]);
    return time.hour < 12 ? *this << " AM" : *this << " PM";
  }
};

}  // namespace kalvo::peers
