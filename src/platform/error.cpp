#include "kalvo/platform/error.h"

#include <algorithm>
#include <iterator>

namespace kalvo {

namespace {

thread_local PendingError pendingError;

struct RunTimeErrorRow {
  std::int32_t number;
  const char* description;
};

// clang-format off
constexpr RunTimeErrorRow kRunTimeErrors[] = {
  {6,   "Overflow"},
  {9,   "Subscript out of range"},
  {11,  "Division by zero"},
  {13,  "Type mismatch"},
  {91,  "Object variable or With block variable not set"},
  {94,  "Invalid use of Null"},
  {424, "Object required"},
  {429, "ActiveX component can't create object"},
  {438, "Object doesn't support this property or method"},
  {457, "This key is already associated with an element of this collection"},
};
// clang-format on

constexpr const char* DescriptionOf(std::int32_t number) {
  for (const RunTimeErrorRow& row : kRunTimeErrors) {
    if (row.number == number) return row.description;
  }
  return nullptr;
}

template <std::int32_t Number>
Error RunTimeError() {
  static_assert(DescriptionOf(Number));
  return Error(Number, DescriptionOf(Number));
}

}  // namespace

Error Overflow() { return RunTimeError<6>(); }
Error SubscriptOutOfRange() { return RunTimeError<9>(); }
Error DivisionByZero() { return RunTimeError<11>(); }
Error TypeMismatch() { return RunTimeError<13>(); }
Error ObjectNotSet() { return RunTimeError<91>(); }
Error InvalidUseOfNull() { return RunTimeError<94>(); }
Error ObjectRequired() { return RunTimeError<424>(); }
Error CannotCreateObject() { return RunTimeError<429>(); }
Error MemberNotSupported() { return RunTimeError<438>(); }
Error KeyAlreadyAssociated() { return RunTimeError<457>(); }

bool IsRunTimeError(std::int32_t number) {
  return std::any_of(std::begin(kRunTimeErrors), std::end(kRunTimeErrors),
                     [&](const RunTimeErrorRow& row) { return row.number == number; });
}

std::string InDescription(std::string_view text) {
  std::string shown;
  for (const char c : text) {
    if (c == '<') {
      shown += "\u2039";
    } else if (c == '>') {
      shown += "\u203A";
    } else if (static_cast<unsigned char>(c) > ' ') {
      shown += c;
    } else if (!shown.empty() && shown.back() != ' ') {
      shown += ' ';
    }
  }
  if (!shown.empty() && shown.back() == ' ') shown.pop_back();
  return shown;
}

const PendingError& CurrentError() { return pendingError; }

void ClearError() {
  pendingError.number = 0;
  pendingError.description.clear();
}

void LeaveError(const Error& error) {
  pendingError.number = error.Number();
  pendingError.description = error.Description();
}

}  // namespace kalvo
