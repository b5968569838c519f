#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

// A call that was under way, or an include that a file came in by: `function` is "" where it has no name.
struct CodePlace {
  std::string function;
  std::string file;
  int line = 0;
};

// Why a page did not run to its end. `file` is the page or the include, as a path below the root, and `line`
// counts from 1; 0 when the failure has no place.
struct PageFailure {
  FailureKind kind = FailureKind::Script;
  std::string message;
  std::string file;
  int line = 0;
  std::vector<CodePlace> calls{};     // that led there, from the inside out, without the failing one's own place
  std::vector<CodePlace> includes{};  // that the file came in by, from the inside out
};

// "Resources/Alerts.asp:12: ReferenceError: identifier 'x' undefined", for logs and consoles.
std::string Describe(const PageFailure& failure);

// The same with the way there: "..., called from Resources/Alerts.asp:30 in Report, included from ...".
std::string DescribeWay(const PageFailure& failure);

struct PageResult {
  std::optional<PageFailure> failure;  // nothing: the page ran to its end or to `Response.End`
  bool headSent = false;

  // What script of the page's own that serves the library failed with, where the library went on: the first of it, and
  // how much there was in all. The message begins with the member: "column: ConstructHTMLData: Error: x".
  std::vector<PageFailure> unseen;
  std::size_t unseenCount = 0;

  // After a failure: what the page wrote and did not flush. The caller sends it or throws it away. The head is
  // the one it would have been sent with.
  PageHead head;
  std::string unsent;
};

// Sends what a failed page left unsent, the head first where it was not sent yet.
void SendRest(const PageResult& result, PageSink& sink);

}  // namespace kalvo::host
