#include "host/edge/edge.h"

#include <string>

#include "fakes/clock.h"
#include "fakes/database.h"
#include "fakes/ranking.h"
#include "fuzz/targets.h"
#include "host/script/page/page_directive.h"
#include "host/script/text/named_values.h"
#include "kalvo/platform/platform.h"

namespace kalvo::test {
namespace {

// The edge of a program whose outside is in memory.
struct Program {
  FakeDatabase database;
  FakeRanking ranking;
  FakeClock clock;
  Platform platform{database, ranking, clock};
  edge::Edge edge{platform};
};

void HoldsRules(const host::NamedValues& values, const edge::Surroundings& surroundings, bool isQuery) {
  for (const edge::Rule& rule : edge::Rules()) {
    for (const std::string& value : values.Of(rule.parameter)) {
      if (value.empty()) continue;
      Require(isQuery || rule.sources == edge::Sources::All, "an identifier comes from the query");
      Require(rule.judge(value, surroundings) == edge::Judgement::Fits, "a page sees values that fit");
    }
  }
}

}  // namespace

void Edge(std::string_view bytes) {
  static Program program;
  static const edge::SortWords words(program.platform);
  const host::PageDirective page;
  host::PageRequest request;
  request.queryString = request.form = request.cookies = bytes;
  const host::NamedValues before = host::NamedValues::FromQuery(request.queryString);
  if (program.edge.Apply(request, page).refusal) {
    Require(request.queryString == bytes && request.form == bytes, "a refused request stays as it was");
    return;
  }
  const host::NamedValues after = host::NamedValues::FromQuery(request.queryString);
  Require(after.Keys() == before.Keys(), "the names stay");
  for (const std::string& key : after.Keys()) {
    Require(after.Of(key).size() == before.Of(key).size(), "every value keeps its place");
  }
  const edge::Surroundings surroundings{words, page};
  HoldsRules(after, surroundings, true);
  HoldsRules(host::NamedValues::FromQuery(request.form), surroundings, false);
  HoldsRules(host::NamedValues::FromCookies(request.cookies), surroundings, false);
  const edge::Verdict again = program.edge.Apply(request, page);
  Require(!again.refusal && again.takenAway.empty(), "what passed once passes again");
}

}  // namespace kalvo::test
