#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/script/page_directive.h"
#include "kalvo/platform/value.h"

namespace kalvo {
class LiveContainer;
struct Platform;
}  // namespace kalvo

namespace kalvo::host {

using NamedTexts = std::vector<std::pair<std::string, std::string>>;

// What a page is asked for, as it came: nothing is decoded yet. Ill-formed UTF-8 becomes U+FFFD before a script
// sees it.
struct PageRequest {
  std::string method = "GET";
  std::string url;             // the path: ServerVariables("URL")
  std::string queryString;     // without "?"
  std::string form;            // an URL-encoded body; "" when there is none
  std::string cookies;         // the Cookie header
  std::string logonName;       // ServerVariables("LOGON_USER")
  NamedTexts serverVariables;  // further ones, such as "REMOTE_ADDR" and "HTTP_USER_AGENT"
};

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

// What stands behind the page's `Session`. Names are matched without regard to case.
class PageSession {
 public:
  virtual ~PageSession() = default;

  // A value by name; empty when nobody set it. Values are texts, numbers, booleans, dates, null or empty.
  virtual Value Get(std::string_view name) = 0;
  virtual void Set(std::string_view name, const Value& value) = 0;

  // Drops the session when the page has ended.
  virtual void Abandon() = 0;

  // The session's live mailbox browsing object, made when a page first asks for it; null when mailboxes are
  // not configured. It serves as `StaticObjects("gLiveDriller")`.
  virtual std::shared_ptr<LiveContainer> LiveDriller() = 0;

  // A token for a form that acts: good once, for this session and this purpose. "" where nothing takes tokens.
  virtual std::string NewToken(std::string_view) { return ""; }

  // Takes the token of a posted form. False, and nothing may be done, when it is none for this purpose.
  virtual bool TakeToken(std::string_view, std::string_view) { return false; }

  // Writes down that the visitor was refused something.
  virtual void NoteRefusal(std::string_view) {}

  // A further static object of the session, of the host's own making; null where there is none of that name.
  virtual std::shared_ptr<Object> HostObject(std::string_view) { return nullptr; }
};

struct PageLimits {
  double seconds = 30;
  std::size_t mebibytes = 256;
};

// A session static object made by script: what the text evaluates to, once a page, when it is first asked for.
struct ScriptStatic {
  std::string name;
  std::string file;  // named in failures
  std::string text;
};

struct PageOptions {
  PageLimits limits;
  std::function<bool()> isWanted{};  // asked while the page runs; false ends it, and nothing more is sent
  std::vector<ScriptStatic> statics;
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

// The pages below one folder. Compiled pages are kept and made anew when a file of theirs has changed. Runs one
// page at a time, on whatever thread calls; a fork inherits what was compiled.
class Site {
 public:
  // The platform outlives the site. Symbolic links that lead out of the root are not followed.
  Site(std::filesystem::path root, const Platform& platform);
  ~Site();
  Site(const Site&) = delete;
  Site& operator=(const Site&) = delete;

  // Runs a page, named by its path below the root with "/" between the parts ("Resources/Alerts.asp"; a leading
  // "/" changes nothing), in a script state of its own. The response is buffered until `Response.Flush` or the
  // end. Everything that the page made is released when this returns. The thread needs 4 MiB of stack.
  PageResult Run(std::string_view page, const PageRequest& request, PageSession& session, PageSink& sink,
                 const PageOptions& options = {});

  // What the page's first line declares; nothing for a page that is not there or cannot be compiled.
  PageDirective Directive(std::string_view page);

  // Compiles a page ahead of its first run. The failure, where it cannot be compiled.
  std::optional<PageFailure> Prepare(std::string_view page);

 private:
  class Pages;
  std::unique_ptr<Pages> pages_;
};

}  // namespace kalvo::host
