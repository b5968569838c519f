#pragma once

#include <cstddef>

namespace kalvo::sqlite {

inline constexpr std::size_t kHeapLimit = std::size_t{256} << 20;

// Prepares SQLite's library, once for the process, before the first connection: what all its connections together
// take of the heap is limited, and none of them waits for the lock under which SQLite would count its memory.
// When the library is in use already, its own counting stays and its own limit is set. A later call changes the
// limit alone.
void PrepareLibrary(std::size_t heapLimit = kHeapLimit);

}  // namespace kalvo::sqlite
