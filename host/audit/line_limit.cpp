#include "host/audit/line_limit.h"

#include <sodium.h>
#include <sys/mman.h>

#include <algorithm>
#include <new>
#include <stdexcept>

namespace kalvo::audit {
namespace {

constexpr std::size_t kPlaces = 4096;

}  // namespace

struct LineLimit::Shared {
  struct Place {
    // The second (upper half), lines of that second (8 bits), lines that were left out (24 bits).
    std::atomic<std::uint64_t> state{0};
  };
  unsigned char key[crypto_shorthash_KEYBYTES];
  Place places[kPlaces];
};

static_assert(std::atomic<std::uint64_t>::is_always_lock_free, "the places are shared between processes");

LineLimit::LineLimit(int linesASecond) : linesASecond_(std::min(linesASecond, 255)) {
  if (sodium_init() < 0) throw std::runtime_error("the cryptography library cannot be used");
  void* memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::bad_alloc();
  shared_ = new (memory) Shared;
  randombytes_buf(shared_->key, sizeof shared_->key);
}

LineLimit::~LineLimit() { munmap(shared_, sizeof(Shared)); }

std::optional<std::uint32_t> LineLimit::Take(std::string_view key, std::int64_t second) {
  std::uint64_t hash = 0;
  static_assert(sizeof hash == crypto_shorthash_BYTES);
  crypto_shorthash(reinterpret_cast<unsigned char*>(&hash), reinterpret_cast<const unsigned char*>(key.data()),
                   key.size(), shared_->key);
  auto& state = shared_->places[hash % kPlaces].state;
  const auto now = static_cast<std::uint32_t>(second);
  std::uint64_t before = state.load();
  for (;;) {
    const auto then = static_cast<std::uint32_t>(before >> 32);
    const auto lines = then == now ? static_cast<int>(before >> 24 & 0xFF) : 0;
    const auto leftOut = static_cast<std::uint32_t>(before & 0xFFFFFF);
    const bool taken = lines < linesASecond_;
    const std::uint64_t after = std::uint64_t{now} << 32 | std::uint64_t(taken ? lines + 1 : lines) << 24 |
                                (taken ? 0 : std::min(leftOut + 1, 0xFFFFFFu));
    if (!state.compare_exchange_weak(before, after)) continue;
    return taken ? std::optional(leftOut) : std::nullopt;
  }
}

std::string_view NetworkOf(std::string_view address) {
  std::size_t end = 0;
  for (int colons = 0; end < address.size(); ++end) {
    if (address[end] == ':' && ++colons == 4) break;
  }
  return address.substr(0, end);
}

}  // namespace kalvo::audit
