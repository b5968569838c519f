#include "host/script/engine.h"

#include <malloc.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>

#include "host/script/text.h"
#include "kalvo/platform/utf8.h"

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
    if (engine.context_ != nullptr) kalvo_engine_ask_now(engine.context_);
    return memory.Fits(bytes);
  }

  static void* Allocate(void* udata, duk_size_t size) {
    Engine& engine = *static_cast<Engine*>(udata);
    Memory& memory = *engine.memory_;
    if (size == 0 || !Grants(engine, size)) return nullptr;
    void* block = std::malloc(size);
    if (block != nullptr) memory.used += malloc_usable_size(block);
    return block;
  }

  static void* Reallocate(void* udata, void* old, duk_size_t size) {
    if (old == nullptr) return Allocate(udata, size);
    if (size == 0) {
      Free(udata, old);
      return nullptr;
    }
    Engine& engine = *static_cast<Engine*>(udata);
    Memory& memory = *engine.memory_;
    const std::size_t before = malloc_usable_size(old);
    if (size > before && !Grants(engine, size - before)) return nullptr;
    void* block = std::realloc(old, size);
    if (block != nullptr) memory.used = memory.used - before + malloc_usable_size(block);
    return block;
  }

  static void Free(void* udata, void* block) {
    if (block == nullptr) return;
    static_cast<Engine*>(udata)->memory_->used -= malloc_usable_size(block);
    std::free(block);
  }
};

namespace {

// Longer limits are none: the clock's own range ends somewhere.
constexpr double kLongestSeconds = 1e8;

std::chrono::steady_clock::duration Duration(double seconds) {
  const double bounded = seconds > 0 ? std::fmin(seconds, kLongestSeconds) : 0;
  return std::chrono::duration_cast<std::chrono::steady_clock::duration>(std::chrono::duration<double>(bounded));
}

[[noreturn]] void Fatal(void*, const char* message) { throw std::runtime_error(message); }

// The text of a property, nothing when it is no string. Reading may run script, so it is guarded by the caller.
std::optional<std::string> TextProperty(duk_context* context, const char* name) {
  std::optional<std::string> text;
  duk_get_prop_string(context, -1, name);
  if (duk_is_string(context, -1) && !duk_is_symbol(context, -1)) text = TextAt(context, -1);
  duk_pop(context);
  return text;
}

// The first line of a stack text that is script code: "    at name (file:12) preventsyield".
void FindPlace(std::string_view stack, std::string& file, int& line) {
  std::size_t at = stack.find('\n');
  while (at != std::string_view::npos) {
    const std::size_t end = stack.find('\n', at + 1);
    const std::string_view row = stack.substr(at + 1, end == std::string_view::npos ? end : end - at - 1);
    at = end;
    const std::size_t close = row.rfind(')');
    const std::size_t colon = row.rfind(':', close);
    const std::size_t open = row.find('(');
    if (close == std::string_view::npos || colon == std::string_view::npos || open == std::string_view::npos) continue;
    const std::string_view marks = row.substr(close);
    const bool own = marks.find("native") == std::string_view::npos && marks.find("internal") == std::string_view::npos;
    if (!own || open > colon) continue;
    file = std::string(row.substr(open + 1, colon - open - 1));
    std::from_chars(row.data() + colon + 1, row.data() + close, line);
    return;
  }
}

std::int32_t SignedNumber(double number) {
  if (!std::isfinite(number)) return codes::kFailed;
  return static_cast<std::int32_t>(
      static_cast<std::uint32_t>(static_cast<std::int64_t>(std::fmod(number, 4294967296.0))));
}

// The program's own run-time errors are 0x800A0000 plus their number in script; any other number is the same on both
// sides.
constexpr std::uint32_t kRunTimeErrors = 0x800A0000;

std::int32_t NumberForScript(std::int32_t number) {
  if (!IsRunTimeError(number)) return number;
  return static_cast<std::int32_t>(kRunTimeErrors + static_cast<std::uint32_t>(number));
}

// The number of an exception: what has none, or 0, which would be no error at all, is a failure all the same.
std::int32_t NumberFromScript(double thrown) {
  const std::int32_t number = SignedNumber(thrown);
  if (number == 0) return codes::kFailed;
  const auto own = static_cast<std::int32_t>(static_cast<std::uint32_t>(number) - kRunTimeErrors);
  return IsRunTimeError(own) ? own : number;
}

// Reads what was thrown. It may be anything, and its properties may be script that throws again.
struct FailureReader {
  ScriptFailure failure;

  static duk_ret_t Read(duk_context* context, void* data) {
    ScriptFailure& failure = static_cast<FailureReader*>(data)->failure;
    std::optional<std::string> description;
    if (duk_is_object(context, -1)) description = ReadObject(context, failure);
    failure.message = [&] {
      duk_dup_top(context);
      duk_safe_to_string(context, -1);
      std::string text = TextAt(context, -1);
      duk_pop(context);
      return text;
    }();
    failure.description = description.value_or(failure.message);
    if (description && !duk_is_error(context, -1)) failure.message = failure.description;
    return 0;
  }

  // Answers the description, else the message.
  static std::optional<std::string> ReadObject(duk_context* context, ScriptFailure& failure) {
    FindPlace(TextProperty(context, "stack").value_or(""), failure.file, failure.line);
    duk_get_prop_string(context, -1, "number");
    if (duk_is_number(context, -1)) failure.number = NumberFromScript(duk_get_number(context, -1));
    duk_pop(context);
    std::optional<std::string> description = TextProperty(context, "description");
    return description ? description : TextProperty(context, "message");
  }
};

}  // namespace

Engine::Engine(const PageLimits& limits, ScriptPage* page, const Locale& locale, std::function<bool()> isWanted)
    : memory_(std::make_unique<Memory>()),
      deadline_(std::chrono::steady_clock::now() + Duration(limits.seconds)),
      isWanted_(std::move(isWanted)),
      page_(page),
      locale_(locale) {
  constexpr std::size_t kMebibyte = 1 << 20;
  memory_->limit = limits.mebibytes > SIZE_MAX / kMebibyte ? SIZE_MAX : limits.mebibytes * kMebibyte;
  context_ = duk_create_heap(Memory::Allocate, Memory::Reallocate, Memory::Free, this, Fatal);
  if (context_ == nullptr) throw std::bad_alloc();
  if (Attempt([&] { Install(); })) MarkEnded(EndCause::MemoryLimit);
}

Engine::~Engine() {
  *home_ = nullptr;
  duk_destroy_heap(context_);
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
  for (duk_int_t level = -2; level > -6; --level) {
    duk_inspect_callstack_entry(context, level);
    if (!duk_is_object(context, -1)) break;
    duk_get_prop_literal(context, -1, "lineNumber");
    duk_get_prop_literal(context, -2, "function");
    duk_get_prop_literal(context, -1, "fileName");
    const int line = duk_get_int_default(context, -3, 0);
    if (line > 0 && duk_is_string(context, -1)) {
      engine.throwLine_ = line;
      engine.throwFile_ = TextAt(context, -1);
      break;
    }
    duk_pop_n(context, 4);
  }
  duk_dup(context, 0);
  return 1;
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
  FailureReader reader;
  reader.failure.number = codes::kFailed;
  const bool hasPlace = duk_is_error(context_, -1);
  const bool unread = duk_safe_call(context_, FailureReader::Read, &reader, 1, 1) != DUK_EXEC_SUCCESS;
  if (unread && reader.failure.message.empty()) {
    const bool nested = duk_get_error_code(context_, -1) == DUK_ERR_RANGE_ERROR;
    reader.failure.message = nested ? "RangeError: calls are nested too deeply" : "an error that cannot be read";
    reader.failure.description = reader.failure.message;
  }
  duk_pop(context_);
  if (!hasPlace) {
    reader.failure.file = throwFile_;
    reader.failure.line = throwLine_;
  }
  return std::move(reader.failure);
}

void Engine::PushError(duk_context* context, std::int32_t number, std::string_view description) {
  PushText(context, description);
  duk_push_error_object(context, DUK_ERR_ERROR, "%s", "");
  duk_dup(context, -2);
  duk_put_prop_literal(context, -2, "message");
  duk_dup(context, -2);
  duk_put_prop_literal(context, -2, "description");
  duk_push_int(context, NumberForScript(number));
  duk_put_prop_literal(context, -2, "number");
}

void Engine::PushEnd(duk_context* context) {
  kalvo_engine_ask_now(context);
  duk_push_error_object(context, DUK_ERR_ERROR, "the page has ended");
}

void PushText(duk_context* context, std::string_view utf8) {
  if (IsAscii(utf8)) {
    duk_push_lstring(context, utf8.data(), utf8.size());
    return;
  }
  std::string text;
  text.reserve(utf8.size() + utf8.size() / 2);
  AppendForEngine(text, utf8);
  duk_push_lstring(context, text.data(), text.size());
}

std::string TextAt(duk_context* context, duk_idx_t index) {
  duk_size_t length = 0;
  const char* text = duk_get_lstring(context, index, &length);
  std::string utf8;
  if (text != nullptr) AppendFromEngine(utf8, {text, length});
  return utf8;
}

}  // namespace kalvo::host

int kalvo_engine_must_stop(void* heap) {
  auto& engine = *static_cast<kalvo::host::Engine*>(heap);
  engine.EndIfOverdue();
  return engine.HasEnded() ? 1 : 0;
}

void kalvo_engine_out_of_memory(void* heap) {
  auto& engine = *static_cast<kalvo::host::Engine*>(heap);
  if (!engine.HasEnded()) engine.cause_ = kalvo::host::EndCause::MemoryLimit;
  if (engine.context_ != nullptr) kalvo_engine_ask_now(engine.context_);
}
