#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "fakes/clock.h"
#include "fakes/database.h"
#include "fakes/live.h"
#include "fakes/page.h"
#include "fakes/ranking.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/platform.h"

namespace kalvo::test {

// A page under way: the outside in memory, and a context and a display that have been started on it.
struct PageFixture {
  explicit PageFixture(std::string_view query = "", std::string_view form = "")
      : page(std::make_shared<FakePage>(query, form)) {
    ClearError();
    page->session->objects["gLiveDriller"] = live;
    page->request->variables["LOGON_USER"] = "DOMAIN\\ken";
    Start();
  }

  // Starts the page again, after a change of the request or the session.
  void Start() {
    context->OnStartPage(*page);
    display->OnStartPage(*page);
  }
  void Administrator() { page->session->values["KalvoAdministrator"] = std::string("Yes"); }
  void MayDrillDown() { page->session->values["KalvoDrillDownAuth"] = std::string("Yes"); }

  const std::string& Text() const { return page->response->text; }

  // What was written since the last call.
  std::string Taken() { return std::exchange(page->response->text, {}); }

  FakeClock clock;
  FakeDatabase database;
  FakeRanking ranking;
  Platform platform{database, ranking, clock};
  std::shared_ptr<FakeLive> live = std::make_shared<FakeLive>();
  std::shared_ptr<FakePage> page;
  std::shared_ptr<Context> context = std::make_shared<Context>();
  std::shared_ptr<Display> display = std::make_shared<Display>();
};

}  // namespace kalvo::test
