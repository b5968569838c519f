#include "host/script/page/page_result.h"

#include "kalvo/platform/append.h"

namespace kalvo::host {

std::string Describe(const PageFailure& failure) {
  return Built([&](std::string& out) {
    Append(out, failure.file);
    if (failure.line > 0) Append(out, ':', failure.line);
    Append(out, ": ", failure.message);
  });
}

void SendRest(const PageResult& result, PageSink& sink) {
  if (!result.headSent) sink.Head(result.head);
  if (!result.unsent.empty()) sink.Body(result.unsent);
}

}  // namespace kalvo::host
