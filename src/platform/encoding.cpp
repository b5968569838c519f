#include "kalvo/platform/encoding.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "kalvo/platform/text_tools.h"

namespace kalvo {

namespace {

constexpr std::size_t kBlock = 16;

// Texts are read by blocks, and each block answers a bit for every byte of it that cannot stay as it is. A block of
// less than 16 bytes is filled up.
#if defined(__SSE2__)

using Block = __m128i;

template <typename Word>
std::uint64_t WordAt(const char* from) {
  Word word;
  std::memcpy(&word, from, sizeof word);
  return word;
}

// Two words that overlap in the middle; nothing behind the text is read.
Block ShortBlock(const char* from, std::size_t size) {
  if (size >= 8) {
    const std::uint64_t high = size == 8 ? 0 : WordAt<std::uint64_t>(from + size - 8) >> (8 * (kBlock - size));
    return _mm_set_epi64x(static_cast<std::int64_t>(high), static_cast<std::int64_t>(WordAt<std::uint64_t>(from)));
  }
  std::uint64_t low = 0;
  if (size >= 4) {
    low = WordAt<std::uint32_t>(from) | WordAt<std::uint32_t>(from + size - 4) << (8 * (size - 4));
  } else {
    for (std::size_t i = 0; i < size; ++i) low |= std::uint64_t{static_cast<unsigned char>(from[i])} << (8 * i);
  }
  return _mm_set_epi64x(0, static_cast<std::int64_t>(low));
}

Block LoadBlock(const char* from, std::size_t size) {
  return size == kBlock ? _mm_loadu_si128(reinterpret_cast<const Block*>(from)) : ShortBlock(from, size);
}

void StoreBlock(char* to, Block block) { _mm_storeu_si128(reinterpret_cast<Block*>(to), block); }

unsigned Bits(Block block) { return static_cast<unsigned>(_mm_movemask_epi8(block)); }

struct Html {
  static unsigned Changed(Block block) {
    const auto is = [&](char byte) { return _mm_cmpeq_epi8(block, _mm_set1_epi8(byte)); };
    return Bits(_mm_or_si128(_mm_or_si128(is('&'), is('<')), _mm_or_si128(is('>'), is('"'))));
  }
};

struct Url {
  static unsigned Changed(Block block) {
    const auto within = [](Block bytes, char first, char count) {
      const Block offset = _mm_sub_epi8(bytes, _mm_set1_epi8(first));
      return _mm_cmpeq_epi8(_mm_min_epu8(offset, _mm_set1_epi8(static_cast<char>(count - 1))), offset);
    };
    const Block lower = _mm_or_si128(block, _mm_set1_epi8(0x20));
    return ~Bits(_mm_or_si128(within(block, '0', 10), within(lower, 'a', 26)));
  }
};

#else

using ByteSet = std::array<bool, 256>;

constexpr ByteSet SetOf(std::string_view bytes) {
  ByteSet set{};
  for (const char byte : bytes) set[static_cast<unsigned char>(byte)] = true;
  return set;
}

struct Block {
  std::array<char, kBlock> bytes;
};

Block LoadBlock(const char* from, std::size_t size) {
  Block block{};
  std::memcpy(block.bytes.data(), from, size);
  return block;
}

void StoreBlock(char* to, const Block& block) { std::memcpy(to, block.bytes.data(), kBlock); }

unsigned BitsOf(const ByteSet& set, const Block& block) {
  unsigned bits = 0;
  for (std::size_t i = 0; i < kBlock; ++i) bits |= unsigned{set[static_cast<unsigned char>(block.bytes[i])]} << i;
  return bits;
}

struct Html {
  static constexpr ByteSet kChanged = SetOf("&<>\"");
  static unsigned Changed(const Block& block) { return BitsOf(kChanged, block); }
};

struct Url {
  static constexpr ByteSet kKept = SetOf("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789");
  static unsigned Changed(const Block& block) { return ~BitsOf(kKept, block); }
};

#endif

template <std::size_t kSize>
char* Put(char* to, const char (&text)[kSize]) {
  std::memcpy(to, text, kSize - 1);
  return to + kSize - 1;
}

char* WriteChanged(Html, char* to, char byte) {
  switch (byte) {
    case '&': return Put(to, "&amp;");
    case '<': return Put(to, "&lt;");
    case '>': return Put(to, "&gt;");
    default: return Put(to, "&quot;");
  }
}

char* WriteChanged(Url, char* to, char byte) {
  if (byte == ' ') return Put(to, "+");
  const auto code = static_cast<unsigned char>(byte);
  *to++ = '%';
  *to++ = HexDigit(code >> 4u, HexLetters::Capital);
  *to++ = HexDigit(code & 15u, HexLetters::Capital);
  return to;
}

// Copies whole blocks; at a byte that changes, what was copied behind it is written over.
template <typename Encoding>
char* WriteEncoded(char* to, std::string_view text) {
  const char* from = text.data();
  std::size_t left = text.size();
  while (left > 0) {
    const std::size_t size = std::min(left, kBlock);
    const Block block = LoadBlock(from, size);
    StoreBlock(to, block);
    const unsigned changed = Encoding::Changed(block) & ((1u << size) - 1);
    std::size_t done = size;
    if (changed == 0) {
      to += size;
    } else {
      const auto kept = static_cast<std::size_t>(std::countr_zero(changed));
      to = WriteChanged(Encoding{}, to + kept, from[kept]);
      done = kept + 1;
    }
    from += done;
    left -= done;
  }
  return to;
}

// By pieces through memory of its own: a text that needs no change costs little more than its copy.
template <typename Encoding, std::size_t kGrowth>
void AppendEncoded(std::string& out, std::string_view text) {
  constexpr std::size_t kPiece = 256;
  char encoded[kPiece * kGrowth + kEncodingSlack];
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, kPiece);
    out.append(encoded, WriteEncoded<Encoding>(encoded, piece));
    text.remove_prefix(piece.size());
  }
}

}  // namespace

char* WriteHtmlEncoded(char* to, std::string_view text) { return WriteEncoded<Html>(to, text); }
char* WriteUrlEncoded(char* to, std::string_view text) { return WriteEncoded<Url>(to, text); }

void AppendHtmlEncoded(std::string& out, std::string_view text) { AppendEncoded<Html, kHtmlGrowth>(out, text); }
void AppendUrlEncoded(std::string& out, std::string_view text) { AppendEncoded<Url, kUrlGrowth>(out, text); }

}  // namespace kalvo
