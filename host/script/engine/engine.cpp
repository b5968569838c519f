#include "host/script/engine/engine.h"

#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "host/script/engine/engine_text.h"
#include "host/script/engine/script_heap.h"
#include "kalvo/platform/append.h"

namespace kalvo::host {

namespace {

// A page that is given less than this part of its limit between two collections of garbage is at its limit.
constexpr std::size_t kProgress = 64;
constexpr std::size_t kReserve = 8;  // the part of the limit that a page has on top to end in

}  // namespace

// The memory of the state and of what is charged to it.
struct Engine::Memory {
  std::size_t limit = 0;
  std::size_t used = 0;
  std::size_t sinceRefusal = SIZE_MAX;  // what was given since a request was last refused
  ScriptHeap heap;

  bool Fits(std::size_t bytes) const { return bytes <= limit && used <= limit - bytes; }

  // Whether the engine may have that much more. It collects its garbage when it is refused and asks again: a page
  // for which that does not help for long is at its limit, and is left some room to end in.
  static bool Grants(Engine& engine, std::size_t bytes) {
    Memory& memory = *engine.memory_;
    const bool fits = memory.Fits(bytes);
    if (fits) {
      memory.sinceRefusal += std::min(bytes, SIZE_MAX - memory.sinceRefusal);
      return true;
    }
    const bool collecting = memory.sinceRefusal < memory.limit / kProgress;
    memory.sinceRefusal = 0;
    if (!collecting) return false;
    if (!engine.HasEnded()) {
      engine.cause_ = EndCause::MemoryLimit;
      memory.limit += memory.limit / kReserve;
    }
    if (engine.context_) kalvo_engine_ask_now(engine.context_);
    return memory.Fits(bytes);
  }

  static void* Allocate(void* udata, duk_size_t size) {
    Engine& engine = *static_cast<Engine*>(udata);
    Memory& memory = *engine.memory_;
    if (size == 0 || !Grants(engine, size)) return nullptr;
    void* block = memory.heap.Allocate(size);
    if (block) memory.used += memory.heap.SizeOf(block);
    return block;
  }

  static void* Reallocate(void* udata, void* old, duk_size_t size) {
    if (!old) return Allocate(udata, size);
    if (size == 0) {
      Free(udata, old);
      return nullptr;
    }
    Engine& engine = *static_cast<Engine*>(udata);
    Memory& memory = *engine.memory_;
    const std::size_t before = memory.heap.SizeOf(old);
    if (size > before && !Grants(engine, size - before)) return nullptr;
    void* block = memory.heap.Reallocate(old, size);
    if (block) memory.used = memory.used - before + memory.heap.SizeOf(block);
    return block;
  }

  static void Free(void* udata, void* block) {
    if (!block) return;
    Memory& memory = *static_cast<Engine*>(udata)->memory_;
    memory.used -= memory.heap.SizeOf(block);
    memory.heap.Free(block);
  }
};

namespace {

constexpr PageLimits kMaking{30, 256};
// A comparison is much cheaper than a look at the clock.
constexpr std::uint32_t kStepsBetweenChecks = 256;

// The kernel zeroes what is given back and taken again: a text that grows piece by piece would pay for its whole length
// at each piece. Blocks up to this size stay with the program.
constexpr int kKeptBytes = 64 << 20;

void KeepLargeBlocks() {
  mallopt(M_MMAP_THRESHOLD, 32 << 20);  // the most that it takes
  mallopt(M_TRIM_THRESHOLD, kKeptBytes);
  mallopt(M_TOP_PAD, 1 << 20);
}

// Longer limits are none: the clock's own range ends somewhere.
constexpr double kLongestSeconds = 1e8;

std::chrono::steady_clock::duration Duration(double seconds) {
  const double bounded = seconds > 0 ? std::fmin(seconds, kLongestSeconds) : 0;
  return std::chrono::duration_cast<std::chrono::steady_clock::duration>(std::chrono::duration<double>(bounded));
}

[[noreturn]] void Fatal(void*, const char* message) { throw std::runtime_error(message); }

}  // namespace

Engine::Engine(const PageLimits& limits, ObjectBridge* bridge, const Locale& locale, std::function<bool()> isWanted,
               EngineImage* image)
    : memory_(std::make_unique<Memory>()),
      deadline_(std::chrono::steady_clock::now() + Duration(limits.seconds)),
      isWanted_(std::move(isWanted)),
      bridge_(bridge),
      locale_(locale) {
  static const bool kept = (KeepLargeBlocks(), true);
  static_cast<void>(kept);
  constexpr std::size_t kMebibyte = 1 << 20;
  memory_->limit = limits.mebibytes > SIZE_MAX / kMebibyte ? SIZE_MAX : limits.mebibytes * kMebibyte;
  if (!image || !BeginIn(*image)) Begin(image);
}

Engine::Engine(EngineImage& image) : Engine(kMaking, nullptr, kEnglishUnitedStates, {}, &image) {}

void Engine::Begin(const EngineImage* image) {
  context_ = duk_create_heap(Memory::Allocate, Memory::Reallocate, Memory::Free, this, Fatal);
  if (!context_) throw std::bad_alloc();
  const auto failure = Attempt([&] {
    Install();
    if (image) image->prepare_(*this);
  });
  if (failure) MarkEnded(EndCause::MemoryLimit);
}

bool Engine::BeginIn(EngineImage& image) {
  if (image.IsBeingMade()) {
    memory_->heap.SetImage(&image);
    return false;
  }
  if (!memory_->Fits(image.used_)) return false;
  std::random_device dice;  // may fail, and nothing may once the image is lent
  const std::uint64_t seed = std::uint64_t{dice()} << 32 | dice();
  context_ = image.Lend();
  if (!context_) return false;
  memory_->heap.SetImage(&image);
  memory_->used = image.used_;
  kalvo_engine_adopt(context_, this, seed);
  return true;
}

std::size_t Engine::MemoryUsed() const { return memory_->used; }

Engine::~Engine() { Close(); }

void Engine::Close() {
  *home_ = nullptr;
  if (!context_) return;
  if (bridge_) bridge_->ReleaseAll();
  // Nothing but memory is left of the state: the engine need not take it apart block by block.
  context_ = nullptr;
  memory_->heap.FreeAll();
  if (EngineImage* image = memory_->heap.Image()) image->TakeBack();
}

Engine& Engine::Of(duk_context* context) {
  duk_memory_functions functions;
  duk_get_memory_functions(context, &functions);
  return *static_cast<Engine*>(functions.udata);
}

duk_uarridx_t Engine::TakeSlot() {
  if (freeSlots_.empty()) return slots_++;
  const duk_uarridx_t slot = freeSlots_.back();
  freeSlots_.pop_back();
  return slot;
}

void Engine::Install() {
  duk_push_heap_stash(context_);
  duk_push_array(context_);
  duk_put_prop_literal(context_, -2, "kept");
  duk_push_array(context_);
  duk_put_prop_literal(context_, -2, "prototypes");
  duk_pop(context_);
  duk_get_global_literal(context_, "Duktape");
  duk_push_c_function(context_, NoteThrow, 1);
  duk_put_prop_literal(context_, -2, "errThrow");
  duk_pop(context_);
  duk_push_global_object(context_);
  duk_del_prop_literal(context_, -1, "Duktape");  // threads, finalizers and the like are no business of a page
  duk_pop(context_);
}

// Remembers where a value was thrown that carries no place of its own, such as a text.
duk_ret_t Engine::NoteThrow(duk_context* context) {
  Engine& engine = Of(context);
  if (duk_is_error(context, 0)) return 1;
  engine.thrownAt_ = engine.RunningCode();
  duk_dup(context, 0);
  return 1;
}

ScriptFrame Engine::RunningCode() const {
  ScriptFrame frame;
  for (duk_int_t level = -1; level > -8 && frame.line == 0; --level) {
    duk_inspect_callstack_entry(context_, level);
    if (!duk_is_object(context_, -1)) {
      duk_pop(context_);
      break;
    }
    duk_get_prop_literal(context_, -1, "lineNumber");
    duk_get_prop_literal(context_, -2, "function");
    duk_get_prop_literal(context_, -1, "fileName");
    const int line = duk_get_int_default(context_, -3, 0);
    if (line > 0 && duk_is_string(context_, -1)) frame = {"", TextAt(context_, -1), line};
    duk_pop_n(context_, 4);
  }
  return frame;
}

void Engine::MarkEnded(EndCause cause) {
  if (!HasEnded()) cause_ = cause;
  kalvo_engine_ask_now(context_);
}

void Engine::End(EndCause cause) {
  MarkEnded(cause);
  throw PageEnd{};
}

void Engine::EndIfOverdue() {
  if (HasEnded()) return;
  if (std::chrono::steady_clock::now() >= deadline_) {
    MarkEnded(EndCause::TimeLimit);
  } else if (isWanted_ && !isWanted_()) {
    MarkEnded(EndCause::Sink);
  }
}

void Engine::CheckLimits() {
  EndIfOverdue();
  if (HasEnded()) throw PageEnd{};
}

void Engine::Charge(std::ptrdiff_t bytes) {
  if (bytes < 0) {
    memory_->used -= static_cast<std::size_t>(-bytes);
  } else if (!memory_->Fits(static_cast<std::size_t>(bytes))) {
    End(EndCause::MemoryLimit);
  } else {
    memory_->used += static_cast<std::size_t>(bytes);
  }
}

ScriptFailure Engine::TakeFailure() {
  const bool hasPlace = duk_is_error(context_, -1);
  ScriptFailure failure = TakeThrown(context_);
  if (!hasPlace && thrownAt_.line > 0) failure.calls = {thrownAt_};
  return failure;
}

void Engine::Note(std::string_view where, ScriptFailure failure) {
  ++notedCount_;
  if (noted_.size() >= kMostNoted) return;
  if (failure.calls.empty()) failure.calls = {RunningCode()};
  noted_.push_back({std::string(where), std::move(failure)});
}

bool Engine::IsNoted(std::size_t before, std::int32_t number, std::string_view description) const {
  if (noted_.size() <= before) return false;
  const ScriptFailure& last = noted_.back().failure;
  return last.number == number && last.description == description;
}

void Engine::ForgetNote(std::size_t before, const Error& error) {
  if (!IsNoted(before, error.Number(), error.Description())) return;
  noted_.pop_back();
  --notedCount_;
}

void Engine::PushEnd(duk_context* context) {
  kalvo_engine_ask_now(context);
  duk_push_error_object(context, DUK_ERR_ERROR, "the page has ended");
}

}  // namespace kalvo::host

int kalvo_engine_must_stop(void* heap) {
  auto& engine = *static_cast<kalvo::host::Engine*>(heap);
  engine.EndIfOverdue();
  return engine.HasEnded() ? 1 : 0;
}

void kalvo_engine_step(duk_context* context) {
  auto& engine = kalvo::host::Engine::Of(context);
  if (++engine.steps_ % kalvo::host::kStepsBetweenChecks == 0) engine.EndIfOverdue();
  if (engine.HasEnded()) duk_error(context, DUK_ERR_RANGE_ERROR, "the page has ended");
}

int kalvo_engine_other_name(duk_context* context, void* prototype, int written) {
  using kalvo::host::Engine;
  const Engine& engine = Engine::Of(context);
  if (!prototype || !engine.bridge_) return 0;
  if (!duk_is_string(context, -1) || duk_is_symbol(context, -1)) return 0;
  duk_size_t length = 0;
  const char* name = duk_get_lstring(context, -1, &length);
  const auto member = engine.bridge_->FindMember(prototype, {name, length});
  if (!member) return 0;
  if (!member->name.empty()) {
    duk_push_lstring(context, member->name.data(), member->name.size());
    duk_replace(context, -2);
    return 1;
  }
  if (written == 0) return 0;
  return Engine::Guarded(context, [&]() -> duk_ret_t {
    throw kalvo::host::ExplainedError(kalvo::MemberNotSupported(), kalvo::Built([&](std::string& out) {
                                        kalvo::Append(out, member->className, ": there is no property ",
                                                      std::string_view(name, length));
                                      }));
  });
}

void kalvo_engine_out_of_memory(void* heap) {
  auto& engine = *static_cast<kalvo::host::Engine*>(heap);
  if (!engine.HasEnded()) engine.cause_ = kalvo::host::EndCause::MemoryLimit;
  if (engine.context_) kalvo_engine_ask_now(engine.context_);
}
