#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/edge/rules.h"
#include "host/edge/sort_words.h"
#include "host/script/page/page_request.h"

namespace kalvo::edge {

// A value that no rule takes, as lines of the log tell it.
struct TakenAway {
  std::string where;      // "query", "form" or "cookies"
  std::string parameter;  // in the spelling of its rule
  std::string value;      // what it was, cut
};

// "ContainerId of the form is not taken: x\"": for logs, whose writer sees to control characters.
std::string Describe(const TakenAway& taken);

// What became of a request.
struct Verdict {
  std::optional<std::string> refusal;  // why no page runs, as a sentence for whoever asked
  std::vector<TakenAway> takenAway;    // for the security log
};

// Stands between the web server and the pages: whatever page runs, the parameters that the published classes read are
// what `Rules` says. A value that is not becomes an empty one, so that the n-th table still has the n-th value; the
// server variable "KALVO_EDGE" names the parameters that this happened to ("First, Sort").
class Edge {
 public:
  // Made once; reads the catalogue.
  explicit Edge(const Platform& platform) : sortWords_(platform) {}

  // Applies the limits and the rules to a request for a page that declares this. After a refusal the request is as it
  // was.
  Verdict Apply(host::PageRequest& request, const host::PageDirective& page) const;

 private:
  SortWords sortWords_;
};

// Takes "Debug" away from a request whose visitor may not see traces.
Verdict HideDebug(host::PageRequest& request);

}  // namespace kalvo::edge
