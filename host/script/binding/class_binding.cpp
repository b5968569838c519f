#include "host/script/binding/class_binding.h"

#include "kalvo/platform/append.h"

namespace kalvo::host {

std::string Signature(const Member& member) {
  std::string text(member.name);
  if (member.kind == MemberKind::Property) return member.set ? text + "*" : text;
  text += '(';
  for (const Parameter& parameter : member.Parameters()) {
    Append(text, text.back() == '(' ? "" : ", ", parameter.name);
    switch (parameter.kind) {
      case Parameter::Default::None: break;
      case Parameter::Default::Text: Append(text, " = \"", parameter.text, '"'); break;
      case Parameter::Default::Number: Append(text, " = ", parameter.number); break;
      case Parameter::Default::Boolean: Append(text, " = ", parameter.number != 0 ? "true" : "false"); break;
    }
  }
  return text + ")";
}

}  // namespace kalvo::host
