#include "support/names_of_one_hash.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <random>
#include <string_view>

namespace kalvo::test {
namespace {

// The hash mixes a text of 16 bytes as two words, each step of which can be taken back:
//   state = (seed ^ mixed(first)) * kFactor;  hash = finish((state ^ mixed(second)) * kFactor)
// so for any first word there is a second one that leads to the wanted state.
constexpr std::uint64_t kFactor = 0xc6a4a7935bd1e995U;
constexpr std::uint64_t kSeed = 0xc70f6907U;

constexpr std::uint64_t Inverse(std::uint64_t odd) {
  std::uint64_t inverse = odd;
  for (int i = 0; i < 6; ++i) inverse *= 2 - odd * inverse;
  return inverse;
}

constexpr std::uint64_t kUndo = Inverse(kFactor);
static_assert(kUndo * kFactor == 1);

constexpr std::uint64_t Shifted(std::uint64_t word) { return word ^ (word >> 47); }

std::uint64_t SecondWord(std::uint64_t first) {
  constexpr std::uint64_t kWanted = 0x123456789abcdefU;
  const std::uint64_t state = ((kSeed ^ (16 * kFactor)) ^ (Shifted(first * kFactor) * kFactor)) * kFactor;
  return Shifted(((kWanted * kUndo) ^ state) * kUndo) * kUndo;
}

bool StandsForItself(unsigned char c) {
  return c > 0 && c < 0x80 && !(c >= 'A' && c <= 'Z') &&
         std::string_view("&=%+;").find(static_cast<char>(c)) == std::string_view::npos;
}

std::array<unsigned char, 8> BytesOf(std::uint64_t word) {
  std::array<unsigned char, 8> bytes{};
  std::memcpy(bytes.data(), &word, bytes.size());
  return bytes;
}

}  // namespace

std::vector<std::string> NamesOfOneHash(int count) {
  std::vector<std::string> names;
  std::mt19937_64 random(7);
  while (names.size() < static_cast<std::size_t>(count)) {
    std::uint64_t first = random();
    std::array<unsigned char, 8> letters = BytesOf(first);
    for (unsigned char& letter : letters) letter = static_cast<unsigned char>('a' + letter % 26);
    std::memcpy(&first, letters.data(), letters.size());
    const std::array<unsigned char, 8> rest = BytesOf(SecondWord(first));
    if (!std::all_of(rest.begin(), rest.end(), StandsForItself)) continue;
    names.emplace_back(letters.begin(), letters.end());
    names.back().append(rest.begin(), rest.end());
  }
  return names;
}

}  // namespace kalvo::test
