#include "base/random_bytes.h"

#include <sys/random.h>

#include <cerrno>
#include <system_error>
#include <vector>

#include "kalvo/platform/text_tools.h"

namespace kalvo::base {

void FillRandom(std::span<std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t got = getrandom(bytes.data(), bytes.size(), 0);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw std::system_error(errno, std::generic_category(), "random bytes");
    bytes = bytes.subspan(static_cast<std::size_t>(got));
  }
}

std::string RandomName(std::size_t bytes) {
  std::vector<std::uint8_t> random(bytes);
  FillRandom(random);
  return Hexadecimal(random);
}

}  // namespace kalvo::base
