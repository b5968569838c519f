#pragma once

#include <memory>
#include <string_view>
#include <utility>

#include "context/fails.h"
#include "kalvo/platform/owned.h"

namespace kalvo {

// The steps of one operation that goes on after errors: each is trapped, and what fails is told on the page. The page
// is looked up at each step, because a step may run a script that gives the operation's object another one.
class Steps {
 public:
  // `context` is the member of the operation's object.
  explicit Steps(const std::shared_ptr<Context>& context) : context_(context) {}

  // True when the step ran to its end. A failure stays pending and is not reported.
  template <typename Step>
  bool Try(Step&& step) {
    return trap_(std::forward<Step>(step));
  }

  // Reports what is pending behind the step. True when the step, or an unreported one before it, has failed. Fails
  // with 91, and leaves the step out, where there is no page to report to.
  template <typename Step>
  bool Fails(std::string_view description, Step&& step) {
    const auto context = Held(context_);
    return kalvo::Fails(trap_, *context, description, std::forward<Step>(step));
  }

  // Tells why the operation ends. Always false.
  bool Refuse(std::string_view text) {
    trap_([&] { Held(context_)->FailureMessage(text, false); });
    return false;
  }

  // Writes a trace of that type, which the maker appends where it is asked for.
  template <typename Maker>
  void Trace(std::string_view type, Maker&& maker) {
    trap_([&] { Held(context_)->Trace(type, maker); });
  }
  template <typename Maker>
  void TraceTable(Maker&& maker) {
    trap_([&] { Held(context_)->TraceTable(maker); });
  }

  // For what takes the trap itself.
  Trap& GetTrap() { return trap_; }

 private:
  Trap trap_;
  const std::shared_ptr<Context>& context_;
};

}  // namespace kalvo
