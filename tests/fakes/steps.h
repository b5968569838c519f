#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kalvo/platform/append.h"
#include "kalvo/platform/error.h"

namespace kalvo::test {

// What a fake was asked to do, in order, and what it refuses to do. A step is recorded with its arguments,
// "Load(2, EXCH01)", and refused by its name alone.
class Steps {
 public:
  std::vector<std::string> done;

  // The same where a page may put an object of its own in the fake's place: the order of the calls is what that object
  // sees, and a promise. Elsewhere the order is habit, and a test asks how often (`Count`).
  const std::vector<std::string>& SeenByThePage() const { return done; }

  // From now on, or from call number `call` of that step on, the step fails.
  void Fail(std::string_view step, std::int32_t number = codes::kFailed, std::string_view description = "Refused.",
            std::size_t call = 1) {
    refused_.insert_or_assign(std::string(step), Refusal{Error(number, std::string(description)), call});
  }

  // From now on the action runs whenever that step is asked for, as a script that serves would: before the step fails
  // or answers, and not while it is running already.
  void When(std::string_view step, std::function<void()> action) {
    actions_.insert_or_assign(std::string(step), std::move(action));
  }

  // From now on nothing fails and no action runs.
  void Recover() {
    refused_.clear();
    actions_.clear();
  }

  template <typename... Arguments>
  void Do(std::string_view step, const Arguments&... arguments) {
    std::string line(step);
    line += '(';
    std::string_view separator;
    (((Append(line, separator, arguments)), separator = ", "), ...);
    line += ')';
    done.push_back(line);
    const std::size_t calls = ++calls_[std::string(step)];
    RunAction(step);
    const auto refusal = refused_.find(std::string(step));
    if (refusal != refused_.end() && calls >= refusal->second.call) throw refusal->second.error;
  }

  // How often a step was asked for, whatever its arguments.
  std::size_t Count(std::string_view step) const {
    const auto found = calls_.find(std::string(step));
    return found == calls_.end() ? 0 : found->second;
  }

 private:
  void RunAction(std::string_view step) {
    const auto found = actions_.find(std::string(step));
    if (acting_ || found == actions_.end()) return;
    acting_ = true;
    const auto action = found->second;
    action();
    acting_ = false;
  }

  struct Refusal {
    Error error;
    std::size_t call;
  };
  std::map<std::string, Refusal> refused_;
  std::map<std::string, std::size_t> calls_;
  std::map<std::string, std::function<void()>> actions_;
  bool acting_ = false;
};

}  // namespace kalvo::test
