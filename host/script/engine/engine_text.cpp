#include "host/script/engine/engine_text.h"

#include "host/script/text/text.h"
#include "kalvo/platform/utf8.h"

namespace kalvo::host {

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
  if (text) AppendFromEngine(utf8, {text, length});
  return utf8;
}

}  // namespace kalvo::host
