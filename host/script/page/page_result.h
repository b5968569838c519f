#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/script/page/page_request.h"

namespace kalvo::host {

// The status line and the headers of a response, without what the sender adds (length, date, connection).
struct PageHead {
  int status = 200;
  std::string reason = "OK";
  std::string contentType = "text/html; charset=utf-8";
  NamedTexts headers;  // no name or value holds a control character
};

// Where a response goes: the head once, then the body in pieces. Called only from inside `Site::Run` and
// `SendRest`; it may throw anything but `kalvo::Error`, which ends the page and leaves `Run`.
class PageSink {
 public:
  virtual ~PageSink() = default;
  virtual void Head(const PageHead& head) = 0;
  virtual void Body(std::string_view bytes) = 0;
};

enum class FailureKind { NotFound, Syntax, Script, TimeLimit, MemoryLimit };

// Why a page did not run to its end. `file` is the page or the include, as a path below the root, and `line`
// counts from 1; 0 when the failure has no place.
struct PageFailure {
  FailureKind kind = FailureKind::Script;
  std::string message;
  std::string file;
  int line = 0;
};

// "Resources/Alerts.asp:12: ReferenceError: identifier 'x' undefined", for logs and consoles.
std::string Describe(const PageFailure& failure);

struct PageResult {
  std::optional<PageFailure> failure;  // nothing: the page ran to its end or to `Response.End`
  bool headSent = false;

  // After a failure: what the page wrote and did not flush. The caller sends it or throws it away. The head is
  // the one it would have been sent with.
  PageHead head;
  std::string unsent;
};

// Sends what a failed page left unsent, the head first where it was not sent yet.
void SendRest(const PageResult& result, PageSink& sink);

}  // namespace kalvo::host
