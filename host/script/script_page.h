#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/script/classes.h"
#include "host/script/engine.h"
#include "host/script/late_binding/ranking.h"
#include "host/script/page_objects.h"
#include "host/script/page_source.h"
#include "kalvo/platform/platform.h"

namespace kalvo::host {

// A page that was read and compiled: its code in the engine's own form, its texts, and where its lines come from.
struct CompiledPage {
  PageSource source;
  std::string code;
};

// What the pages of a site have in common.
struct SiteParts {
  std::filesystem::path root;
  const Platform& platform;
};

// One run of a page: its engine, its intrinsic objects and the objects that it must tell of its end.
class ScriptPage {
 public:
  ScriptPage(const SiteParts& site, const CompiledPage& compiled, const PageRequest& request, PageSession& session,
             PageSink& sink, const PageOptions& options);
  ~ScriptPage();

  PageResult Run();

  Engine& ScriptEngine() { return engine_; }
  const SiteParts& Site() const { return site_; }
  const CompiledPage& Compiled() const { return compiled_; }
  const PageOptions& Options() const { return options_; }
  const std::shared_ptr<RequestObject>& PageRequestObject() const { return request_; }
  const std::shared_ptr<ResponseObject>& PageResponse() const { return response_; }
  const std::shared_ptr<ServerObject>& PageServer() const { return server_; }
  const std::shared_ptr<SessionObject>& PageSessionObject() const { return session_; }

  // Makes an object of a public class; fails with 429 for a class that there is not. One that is `started` is told
  // of the page's start at once and of its end later.
  std::shared_ptr<Object> Make(std::string_view name, bool started);

 private:
  struct Started {
    std::shared_ptr<Object> object;
    const ClassBinding* binding;
  };

  void InstallGlobals();
  void RunCode();
  void EndObjects();
  std::optional<PageFailure> FailureOf(const std::optional<ScriptFailure>& failure) const;

  const SiteParts& site_;
  const CompiledPage& compiled_;
  const PageOptions& options_;
  PageRanking ranking_;
  const Platform platform_;  // as the page's objects see it: with the session's own Top-N loader
  Engine engine_;
  std::shared_ptr<RequestObject> request_;
  std::shared_ptr<ResponseObject> response_;
  std::shared_ptr<ServerObject> server_;
  std::shared_ptr<SessionObject> session_;
  std::shared_ptr<ScriptingContextObject> context_;
  std::vector<Started> started_;
};

}  // namespace kalvo::host
