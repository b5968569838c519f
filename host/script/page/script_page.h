#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/script/binding/wrappers.h"
#include "host/script/engine/engine.h"
#include "host/script/page/classes.h"
#include "host/script/page/object_maker.h"
#include "host/script/page/page_objects.h"
#include "host/script/page/page_ranking.h"
#include "host/script/page/page_source.h"
#include "host/script/page/site.h"
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
  EngineImage* image;  // how the script state of each page begins
};

// Puts into a script state what every page finds there: the constants and the members of the classes.
void PrepareState(Engine& engine);

// One run of a page: its engine, its intrinsic objects and the objects that it must tell of its end.
class ScriptPage {
 public:
  ScriptPage(const SiteParts& site, const CompiledPage& compiled, const PageRequest& request, PageSession& session,
             PageSink& sink, const PageOptions& options);
  ~ScriptPage();

  PageResult Run();

  const CompiledPage& Compiled() const { return compiled_; }
  ResponseObject& PageResponse() { return *response_; }
  const ObjectMaker& Maker() const { return maker_; }

 private:
  void InstallGlobals();
  void RunCode();
  std::optional<PageFailure> FailureOf(const std::optional<ScriptFailure>& failure) const;
  PageFailure Placed(const ScriptFailure& failure) const;
  std::vector<PageFailure> Unseen() const;

  const CompiledPage& compiled_;
  Wrappers wrappers_{Classes()};
  Engine engine_;
  std::shared_ptr<RequestObject> request_;
  std::shared_ptr<ResponseObject> response_;
  std::shared_ptr<SessionObject> session_;
  PageRanking ranking_;
  const Platform platform_;  // as the page's objects see it: with the session's own Top-N loader
  ObjectMaker maker_;
  std::shared_ptr<ServerObject> server_;
  std::shared_ptr<ScriptingContextObject> context_;
  std::shared_ptr<ApplicationObject> application_;
};

}  // namespace kalvo::host
