#include "adapters/sqlite/heap.h"

#include <malloc.h>
#include <sqlite3.h>

#include <atomic>
#include <cstdlib>

namespace kalvo::sqlite {

namespace {

// SQLite's own limit works only while SQLite counts its memory, under one lock for all threads. This counter
// takes the place of both. SQLite holds its allocator by plain functions, so what they share is static.
std::atomic<std::size_t> used{0};
std::atomic<std::size_t> limit{kHeapLimit};

bool Take(std::size_t bytes) {
  if (used.fetch_add(bytes, std::memory_order_relaxed) + bytes <= limit.load(std::memory_order_relaxed)) return true;
  used.fetch_sub(bytes, std::memory_order_relaxed);
  return false;
}

void GiveBack(std::size_t bytes) { used.fetch_sub(bytes, std::memory_order_relaxed); }

int Size(void* memory) { return memory ? static_cast<int>(malloc_usable_size(memory)) : 0; }

void* Allocate(int bytes) {
  void* memory = std::malloc(static_cast<std::size_t>(bytes));
  if (!memory || Take(malloc_usable_size(memory))) return memory;
  std::free(memory);
  return nullptr;
}

void Free(void* memory) {
  if (memory) GiveBack(malloc_usable_size(memory));
  std::free(memory);
}

void* Reallocate(void* memory, int bytes) {
  const std::size_t before = malloc_usable_size(memory);
  const auto wanted = static_cast<std::size_t>(bytes);
  const std::size_t growth = wanted > before ? wanted - before : 0;
  if (!Take(growth)) return nullptr;
  void* moved = std::realloc(memory, wanted);
  GiveBack(growth);
  if (!moved) return nullptr;
  GiveBack(before);
  used.fetch_add(malloc_usable_size(moved), std::memory_order_relaxed);
  return moved;
}

int RoundUp(int bytes) { return (bytes + 7) & ~7; }
int Start(void*) { return SQLITE_OK; }
void Stop(void*) {}

bool InstallAllocator() {
  static const sqlite3_mem_methods methods = {Allocate, Free, Reallocate, Size, RoundUp, Start, Stop, nullptr};
  return sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0) == SQLITE_OK &&
         sqlite3_config(SQLITE_CONFIG_MALLOC, &methods) == SQLITE_OK;
}

}  // namespace

void PrepareLibrary(std::size_t heapLimit) {
  static const bool countsItself = InstallAllocator();
  limit = heapLimit;
  if (!countsItself) sqlite3_hard_heap_limit64(static_cast<sqlite3_int64>(heapLimit));
  sqlite3_initialize();
}

}  // namespace kalvo::sqlite
