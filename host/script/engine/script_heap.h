#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include "host/script/engine/kalvo_duktape.h"

namespace kalvo::host {

class Engine;

// A script state as every page finds it, made once and copied for each page: what a page changes is gone with its copy.
// One page has it at a time, because a copy lies where the first one lay; another state that is begun meanwhile is made
// from nothing. Safe to use from several threads.
class EngineImage {
 public:
  // Puts into a new state whatever all pages find in it.
  using Prepare = std::function<void(Engine&)>;

  explicit EngineImage(Prepare prepare);
  ~EngineImage();
  EngineImage(const EngineImage&) = delete;
  EngineImage& operator=(const EngineImage&) = delete;

 private:
  friend class Engine;
  friend class ScriptHeap;

  struct Unmap {
    void operator()(std::byte* place) const;
  };

  bool IsBeingMade() const { return !context_; }
  bool Holds(const void* block) const;
  void* Allocate(std::size_t bytes);

  // The state, fresh, unless somebody has it; null then.
  duk_context* Lend();
  void TakeBack() { isLent_ = false; }

  Prepare prepare_;
  std::unique_ptr<std::byte, Unmap> place_;
  std::size_t size_ = 0;            // of the place that is taken
  std::size_t used_ = 0;            // of it by the state, as its limit counts
  std::vector<std::byte> fresh_;    // what the place holds when it is lent
  duk_context* context_ = nullptr;  // null until the state is made
  std::atomic<bool> isLent_ = false;
};

// The blocks of one script state, all freed together at its end.
class ScriptHeap {
 public:
  ScriptHeap() = default;
  ~ScriptHeap() { FreeAll(); }
  ScriptHeap(const ScriptHeap&) = delete;
  ScriptHeap& operator=(const ScriptHeap&) = delete;

  // The state begins in the image, or is to become it. Null: it begins empty.
  void SetImage(EngineImage* image) { image_ = image; }
  EngineImage* Image() const { return image_; }

  void* Allocate(std::size_t bytes);
  void* Reallocate(void* block, std::size_t bytes);
  void Free(void* block);
  void FreeAll();

  // How much a block takes.
  std::size_t SizeOf(const void* block) const;

 private:
  struct Block;
  bool IsInImage(const void* block) const { return image_ && image_->Holds(block); }
  void Link(Block* block);
  void Unlink(const Block* block);

  Block* first_ = nullptr;
  EngineImage* image_ = nullptr;
};

}  // namespace kalvo::host
