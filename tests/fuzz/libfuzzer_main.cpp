// The entry that libFuzzer calls, for the one target that this program was built for: KALVO_FUZZ_TARGET is its name.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const kalvo::test::Target& target =
      *std::ranges::find(kalvo::test::Targets(), KALVO_FUZZ_TARGET, &kalvo::test::Target::name);
  target.run({reinterpret_cast<const char*>(data), size});
  return 0;
}
