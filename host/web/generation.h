#pragma once

#include <filesystem>
#include <optional>

#include "host/audit/trail.h"
#include "host/edge/edge.h"
#include "host/parts/parts.h"
#include "host/script/page/site.h"
#include "host/web/acting/tokens.h"
#include "host/web/login/gate.h"
#include "host/web/privileges.h"
#include "host/web/settings.h"
#include "host/web/visitor.h"

namespace kalvo::web {

class Log;

// Everything that workers are forked from: settings, parts that nothing has been asked of yet, the site's compiled
// pages, and the gate. What is wrong with the settings shows while this is made, in the process that can refuse them.
struct Generation {
  // Compiles every page of the site; one that cannot be compiled is logged and answered 500 when it is asked for.
  // Fails with SettingError. The log and the trail outlive the generation.
  Generation(Settings chosen, const Log& log, audit::Trail& whereActsAreRecorded);

  Settings settings;
  std::optional<Identity> identity;  // whom workers serve as, where the settings name somebody
  Visitor visitor;                   // of the page that a worker runs; each worker has its own
  host::Parts parts;
  host::Site site;
  edge::Edge edge;
  audit::Trail& trail;
  std::optional<login::Gate> gate;  // where visitors sign in; nothing where nobody does
  std::optional<Tokens> tokens;     // of forms that act; always there
};

}  // namespace kalvo::web
