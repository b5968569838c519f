#include "platform/error.h"

namespace kalvo {

namespace {

thread_local PendingError pendingError;

}  // namespace

Error Overflow() { return Error(6, "Overflow"); }
Error SubscriptOutOfRange() { return Error(9, "Subscript out of range"); }
Error DivisionByZero() { return Error(11, "Division by zero"); }
Error TypeMismatch() { return Error(13, "Type mismatch"); }
Error ObjectNotSet() { return Error(91, "Object variable or With block variable not set"); }
Error InvalidUseOfNull() { return Error(94, "Invalid use of Null"); }
Error ObjectRequired() { return Error(424, "Object required"); }
Error CannotCreateObject() { return Error(429, "ActiveX component can't create object"); }
Error MemberNotSupported() { return Error(438, "Object doesn't support this property or method"); }
Error KeyAlreadyAssociated() { return Error(457, "This key is already associated with an element of this collection"); }

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
