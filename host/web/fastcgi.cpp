#include "host/web/fastcgi.h"

#include <fcgiapp.h>

#include <algorithm>
#include <charconv>
#include <climits>

#include "host/web/headers.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::web {
namespace {

constexpr std::string_view kFormType = "application/x-www-form-urlencoded";

struct Body {
  std::string type;
  std::size_t length = 0;
};

void TakeParameter(FastCgiRequest& taken, Body& body, std::string_view name, std::string_view value) {
  const auto keep = [&] { taken.request.serverVariables.emplace_back(name, value); };
  if (name == "KALVO_PAGE") {
    taken.page = value;
  } else if (name == "KALVO_URL") {
    taken.request.url = value;
  } else if (name == "QUERY_STRING") {
    taken.request.queryString = value;
  } else if (name == "REQUEST_METHOD") {
    taken.request.method = value;
  } else if (name == "CONTENT_LENGTH") {
    std::from_chars(value.data(), value.data() + value.size(), body.length);
    keep();
  } else if (name == "CONTENT_TYPE") {
    body.type = ToLowerAscii(value.substr(0, value.find(';')));
    keep();
  } else {
    if (name == "HTTP_COOKIE") taken.request.cookies = value;
    keep();
  }
}

std::string ReadBody(FCGX_Stream* in, std::size_t length) {
  std::string body(length, '\0');
  std::size_t got = 0;
  while (got < length) {
    const int piece =
        FCGX_GetStr(body.data() + got, static_cast<int>(std::min<std::size_t>(length - got, INT_MAX)), in);
    if (piece <= 0) break;
    got += static_cast<std::size_t>(piece);
  }
  body.resize(got);
  return body;
}

}  // namespace

FastCgiRequest ReadRequest(FCGX_Request& request) {
  FastCgiRequest taken;
  Body body;
  for (char** entry = request.envp; *entry; ++entry) {
    const std::string_view line(*entry);
    const auto end = line.find('=');
    if (end != std::string::npos) TakeParameter(taken, body, line.substr(0, end), line.substr(end + 1));
  }
  if (body.length > kLargestBody) {
    taken.complete = false;
  } else if (body.length > 0) {
    std::string text = ReadBody(request.in, body.length);
    taken.complete = text.size() == body.length;
    (body.type == kFormType ? taken.request.form : taken.request.body) = std::move(text);
  }
  return taken;
}

FastCgiSink::FastCgiSink(FCGX_Request& request, const host::PageDirective& directive)
    : request_(request), policy_(ContentPolicy(directive)) {}

void FastCgiSink::Head(const host::PageHead& given) {
  host::PageHead head = given;
  AddHeaders(head, policy_);
  std::string text;
  Append(text, "Status: ", head.status, ' ', head.reason, kCrLf, "Content-Type: ", head.contentType, kCrLf);
  for (const auto& [name, value] : head.headers) Append(text, name, ": ", value, kCrLf);
  Append(text, kCrLf);
  Put(text);
}

void FastCgiSink::Body(std::string_view bytes) {
  Put(bytes);
  if (FCGX_FFlush(request_.out) < 0) throw VisitorGone();
}

void FastCgiSink::Put(std::string_view bytes) {
  while (!bytes.empty()) {
    const auto piece = bytes.substr(0, INT_MAX);
    if (FCGX_PutStr(piece.data(), static_cast<int>(piece.size()), request_.out) < 0) throw VisitorGone();
    bytes.remove_prefix(piece.size());
  }
}

}  // namespace kalvo::web
