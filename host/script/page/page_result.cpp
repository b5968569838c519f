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

std::string DescribeWay(const PageFailure& failure) {
  const auto appendAll = [](std::string& out, std::string_view how, const std::vector<CodePlace>& places) {
    for (const CodePlace& place : places) {
      Append(out, how, place.file, ':', place.line);
      if (!place.function.empty()) Append(out, " in ", place.function);
    }
  };
  return Built([&](std::string& out) {
    out = Describe(failure);
    appendAll(out, ", called from ", failure.calls);
    appendAll(out, ", included from ", failure.includes);
  });
}

void SendRest(const PageResult& result, PageSink& sink) {
  if (!result.headSent) sink.Head(result.head);
  if (!result.unsent.empty()) sink.Body(result.unsent);
}

}  // namespace kalvo::host
