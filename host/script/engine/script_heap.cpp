#include "host/script/engine/script_heap.h"

#include <malloc.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "host/script/engine/engine.h"

namespace kalvo::host {
namespace {

constexpr std::size_t kPlace = 4 << 20;  // of addresses; memory is taken as far as the state goes
constexpr std::size_t kAlignment = alignof(std::max_align_t);

// Stands before a block of the image.
struct alignas(kAlignment) ImageBlock {
  std::size_t size;
};

std::byte* MapPlace() {
  void* place = mmap(nullptr, kPlace, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (place == MAP_FAILED) throw std::bad_alloc();
  return static_cast<std::byte*>(place);
}

}  // namespace

// ---- the image ------------------------------------------------------------------------------------------

void EngineImage::Unmap::operator()(std::byte* place) const { munmap(place, kPlace); }

EngineImage::EngineImage(Prepare prepare) : prepare_(std::move(prepare)), place_(MapPlace()) {
  Engine maker(*this);
  used_ = maker.MemoryUsed();
  fresh_.assign(place_.get(), place_.get() + size_);
  context_ = maker.Context();
  maker.context_ = nullptr;
}

EngineImage::~EngineImage() = default;

bool EngineImage::Holds(const void* block) const {
  const auto* byte = static_cast<const std::byte*>(block);
  return std::less_equal<>()(place_.get(), byte) && std::less<>()(byte, place_.get() + kPlace);
}

void* EngineImage::Allocate(std::size_t bytes) {
  const std::size_t taken = sizeof(ImageBlock) + (bytes + kAlignment - 1) / kAlignment * kAlignment;
  if (bytes > kPlace || taken > kPlace - size_) return nullptr;
  auto* block = new (place_.get() + size_) ImageBlock{taken - sizeof(ImageBlock)};
  size_ += taken;
  return block + 1;
}

duk_context* EngineImage::Lend() {
  if (!context_ || isLent_.exchange(true)) return nullptr;
  std::copy(fresh_.begin(), fresh_.end(), place_.get());
  return context_;
}

// ---- blocks ---------------------------------------------------------------------------------------------

// Stands before a block, so that all can be found at the end.
struct alignas(kAlignment) ScriptHeap::Block {
  Block* previous;
  Block* next;

  static Block* Of(void* block) { return static_cast<Block*>(block) - 1; }
};

std::size_t ScriptHeap::SizeOf(const void* block) const {
  if (IsInImage(block)) return (static_cast<const ImageBlock*>(block) - 1)->size;
  return malloc_usable_size(Block::Of(const_cast<void*>(block))) - sizeof(Block);
}

void ScriptHeap::Link(Block* block) {
  block->previous = nullptr;
  block->next = first_;
  if (first_) first_->previous = block;
  first_ = block;
}

void ScriptHeap::Unlink(const Block* block) {
  (block->previous ? block->previous->next : first_) = block->next;
  if (block->next) block->next->previous = block->previous;
}

void* ScriptHeap::Allocate(std::size_t bytes) {
  if (image_ && image_->IsBeingMade()) return image_->Allocate(bytes);
  if (bytes > SIZE_MAX - sizeof(Block)) return nullptr;
  auto* block = static_cast<Block*>(std::malloc(sizeof(Block) + bytes));
  if (!block) return nullptr;
  Link(block);
  return block + 1;
}

void* ScriptHeap::Reallocate(void* old, std::size_t bytes) {
  if (IsInImage(old)) {
    void* moved = Allocate(bytes);
    if (moved) std::memcpy(moved, old, std::min(bytes, SizeOf(old)));
    return moved;
  }
  if (bytes > SIZE_MAX - sizeof(Block)) return nullptr;
  Block* block = Block::Of(old);
  Unlink(block);
  auto* moved = static_cast<Block*>(std::realloc(block, sizeof(Block) + bytes));
  Link(moved ? moved : block);
  return moved ? moved + 1 : nullptr;
}

// A block of the image stays where it is: it comes back with the next copy.
void ScriptHeap::Free(void* block) {
  if (IsInImage(block)) return;
  Unlink(Block::Of(block));
  std::free(Block::Of(block));
}

void ScriptHeap::FreeAll() {
  while (first_) std::free(std::exchange(first_, first_->next));
}

}  // namespace kalvo::host
