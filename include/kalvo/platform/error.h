#pragma once

#include <concepts>
#include <cstdint>
#include <exception>
#include <string>
#include <string_view>
#include <utility>

namespace kalvo {

// What a failing operation throws. The number is a run-time error's own (9) or a component's 32-bit code
// (0x80004005, held as the same bits).
class Error : public std::exception {
 public:
  Error(std::int32_t number, std::string description) : number_(number), description_(std::move(description)) {}

  std::int32_t Number() const { return number_; }
  const std::string& Description() const { return description_; }
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  std::int32_t number_;
  std::string description_;
};

// The run-time errors that this program raises itself, each with its own description.
Error Overflow();              // 6
Error SubscriptOutOfRange();   // 9
Error DivisionByZero();        // 11
Error TypeMismatch();          // 13
Error ObjectNotSet();          // 91
Error InvalidUseOfNull();      // 94
Error ObjectRequired();        // 424
Error CannotCreateObject();    // 429
Error MemberNotSupported();    // 438
Error KeyAlreadyAssociated();  // 457

// Whether a number is that of one of these.
bool IsRunTimeError(std::int32_t number);

// Codes of components that the library or its adapters know by name.
namespace codes {
inline constexpr std::int32_t kFailed = static_cast<std::int32_t>(0x80004005);            // nothing better known
inline constexpr std::int32_t kOldAgent = static_cast<std::int32_t>(0x80004002);          // call not supported there
inline constexpr std::int32_t kNoMessageReports = static_cast<std::int32_t>(0x80004003);  // a version 1.1 agent
inline constexpr std::int32_t kSqlSyntax = static_cast<std::int32_t>(0x80040E14);         // or an unknown column
inline constexpr std::int32_t kUnknownTable = static_cast<std::int32_t>(0x80040E37);
inline constexpr std::int32_t kNoSuchMailbox = static_cast<std::int32_t>(0x8004010F);
inline constexpr std::int32_t kAmbiguousName = static_cast<std::int32_t>(0xE1C10029);
inline constexpr std::int32_t kNoSuchFolder = static_cast<std::int32_t>(0xE1C1002F);
}  // namespace codes

// A text from outside as a part of a description: pages show descriptions as they stand, so < and > become ‹
// and ›, and line breaks and control characters single blanks.
std::string InDescription(std::string_view text);

// The last error that a trapped step left behind, one for the thread that runs the page. Number 0 is none.
struct PendingError {
  std::int32_t number = 0;
  std::string description;
};

// The pending error of this thread; never cleared by reading it.
const PendingError& CurrentError();
void ClearError();
void LeaveError(const Error& error);

// Runs steps one by one with their errors trapped. A trap begins with a clear error state; a failing step
// leaves its error pending and a succeeding one clears nothing. Only `Error` is caught: the end of a page
// and a bug pass through.
class Trap {
 public:
  Trap() { ClearError(); }
  Trap(const Trap&) = delete;
  Trap& operator=(const Trap&) = delete;

  // True when the step ran to its end.
  template <std::invocable Step>
  bool operator()(Step&& step) {
    try {
      std::forward<Step>(step)();
      return true;
    } catch (const Error& error) {
      LeaveError(error);
      return false;
    }
  }
};

}  // namespace kalvo
