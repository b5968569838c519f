#pragma once

#include <chrono>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/script/engine/kalvo_duktape.h"
#include "host/script/engine/limits.h"
#include "host/script/engine/object_bridge.h"
#include "host/script/engine/script_failure.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/locale.h"

namespace kalvo::host {

class EngineImage;

// Thrown through the library when the page must stop. Not an `Error`: no trap catches it.
struct PageEnd {};

enum class EndCause { None, Response, TimeLimit, MemoryLimit, Sink };

// One script state with its limits: everything that one page's script makes. It ends at the first of
// `Response.End`, the limits of time and memory, and the loss of whoever wanted the page; from then on no script code
// runs and every call from script into the program ends again, whatever the script catches.
class Engine {
 public:
  // The bridge outlives the engine; none for a state that only compiles. `isWanted` is asked as often as the clock;
  // empty: the page is wanted to its end. `image`, which outlives the engine, is how the state begins; none: empty.
  Engine(const PageLimits& limits, ObjectBridge* bridge, const Locale& locale = kEnglishUnitedStates,
         std::function<bool()> isWanted = {}, EngineImage* image = nullptr);
  ~Engine();
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  // Lets go of everything that script made. What the program still holds of it cannot be reached any more.
  void Close();

  static Engine& Of(duk_context* context);
  duk_context* Context() const { return context_; }

  ObjectBridge& Bridge() const { return *bridge_; }

  // How dates and numbers that script hands over become text.
  const Locale& PageLocale() const { return locale_; }

  // ---- limits -------------------------------------------------------------------------------------------

  EndCause Cause() const { return cause_; }
  bool HasEnded() const { return cause_ != EndCause::None; }

  // Ends the page for a cause; the first cause stands.
  void MarkEnded(EndCause cause);
  [[noreturn]] void End(EndCause cause);

  // Throws PageEnd when the page has ended, is past its time, or is not wanted any more.
  void CheckLimits();

  // Counts memory that the program keeps for the script outside of the engine. Throws PageEnd when the limit is
  // passed. A negative number gives back.
  void Charge(std::ptrdiff_t bytes);

  // False once the state is being torn down: script objects can no longer be reached.
  bool IsOpen() const { return *home_; }

  // This engine for as long as it is open, null after that.
  const std::shared_ptr<Engine*>& Home() const { return home_; }

  // ---- what the program keeps here ----------------------------------------------------------------------

  // A free place in the list of script values that the program keeps.
  duk_uarridx_t TakeSlot();
  void GiveSlot(duk_uarridx_t slot) { freeSlots_.push_back(slot); }

  // ---- code ---------------------------------------------------------------------------------------------

  // Runs a step with the engine's and the program's errors caught. What was thrown, or nothing.
  template <std::invocable Step>
  std::optional<ScriptFailure> Attempt(Step&& step) {
    auto run = [](duk_context* context, void* data) -> duk_ret_t {
      return Guarded(context, [&] {
        (*static_cast<std::remove_reference_t<Step>*>(data))();
        return 0;
      });
    };
    if (duk_safe_call(context_, run, &step, 0, 1) == DUK_EXEC_SUCCESS) {
      duk_pop(context_);
      return std::nullopt;
    }
    return TakeFailure();
  }

  // Runs a step that reaches into script, from inside the library: `where` says which member of what. What it throws
  // is noted and becomes `Error`; the end of the page passes on.
  template <std::invocable Step>
  void Protected(std::string_view where, Step&& step) {
    CheckLimits();
    const std::size_t noted = noted_.size();
    const std::optional<ScriptFailure> failure = Attempt(std::forward<Step>(step));
    if (HasEnded()) throw PageEnd{};
    if (!failure) return;
    if (!IsNoted(noted, failure->number, failure->description)) Note(where, *failure);
    throw Error(failure->number, failure->description);
  }

  // Every entry from script: what the program throws becomes a script error after all scopes are left.
  template <std::invocable Step>
  static duk_ret_t Guarded(duk_context* context, Step&& step) {
    duk_ret_t results = 0;
    bool failed = true;
    try {
      results = std::forward<Step>(step)();
      failed = false;
    } catch (const PageEnd&) {
      PushEnd(context);
    } catch (const ExplainedError& error) {
      PushError(context, error.Number(), error.Description(), error.Message());
    } catch (const Error& error) {
      PushError(context, error.Number(), error.Description(), error.Description());
    } catch (const std::bad_alloc&) {
      Of(context).MarkEnded(EndCause::MemoryLimit);
      PushEnd(context);
    } catch (const std::exception& error) {
      PushError(context, codes::kFailed, error.what(), error.what());
    }
    return failed ? duk_throw(context) : results;
  }

  // The failure on the top of the stack, which is popped.
  ScriptFailure TakeFailure();

  // ---- what went wrong inside of script that serves the library -----------------------------------------

  // The first of what was noted, and how many there were in all. The library goes on after an error and may tell
  // nobody.
  struct Noted {
    std::string where;  // "column: ConstructHTMLData"
    ScriptFailure failure;
  };
  const std::vector<Noted>& NotedFailures() const { return noted_; }
  std::size_t NotedCount() const { return notedCount_; }

  // Notes a failure; one without a place gets that of the code that is running.
  void Note(std::string_view where, ScriptFailure failure);

  // Whether the last note is of this error and came after the first `before`.
  bool IsNoted(std::size_t before, std::int32_t number, std::string_view description) const;

  // Takes that note back: script gets the error itself.
  void ForgetNote(std::size_t before, const Error& error);

 private:
  static constexpr std::size_t kMostNoted = 20;
  struct Memory;
  friend class EngineImage;
  friend int ::kalvo_engine_must_stop(void*);
  friend void ::kalvo_engine_out_of_memory(void*);
  friend void ::kalvo_engine_step(duk_context*);
  friend int ::kalvo_engine_other_name(duk_context*, void*, int);

  static void PushEnd(duk_context* context);
  static duk_ret_t NoteThrow(duk_context* context);
  explicit Engine(EngineImage& image);  // which it makes
  void Begin(const EngineImage* image);
  bool BeginIn(EngineImage& image);
  std::size_t MemoryUsed() const;
  ScriptFrame RunningCode() const;
  void EndIfOverdue();
  void Install();

  std::unique_ptr<Memory> memory_;
  std::chrono::steady_clock::time_point deadline_;
  std::function<bool()> isWanted_;
  EndCause cause_ = EndCause::None;
  std::shared_ptr<Engine*> home_ = std::make_shared<Engine*>(this);
  ObjectBridge* bridge_;
  const Locale& locale_;
  duk_context* context_ = nullptr;
  duk_uarridx_t slots_ = 0;
  std::vector<duk_uarridx_t> freeSlots_;
  ScriptFrame thrownAt_;  // where a value that is no error was last thrown
  std::vector<Noted> noted_;
  std::size_t notedCount_ = 0;
  std::uint32_t steps_ = 0;
};

}  // namespace kalvo::host
