#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/script/engine/limits.h"
#include "host/script/page/page_directive.h"
#include "host/script/page/page_request.h"
#include "host/script/page/page_result.h"
#include "host/script/page/page_session.h"

namespace kalvo {
struct Platform;
}  // namespace kalvo

namespace kalvo::host {

// A session static object made by script: what the text evaluates to, once a page, when it is first asked for.
struct ScriptStatic {
  std::string name;
  std::string file;  // named in failures
  std::string text;
};

struct PageOptions {
  PageLimits limits;
  std::function<bool()> isWanted{};  // asked while the page runs; false ends it, and nothing more is sent
  std::vector<ScriptStatic> statics{};
  NamedTexts application{};  // what `Application(name)` answers
  int sessionMinutes = 30;   // without a request, after which a session ends
};

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
