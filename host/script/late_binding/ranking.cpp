// Script objects as Top-N loader and result set.
#include "host/script/late_binding/adapters.h"
#include "host/script/late_binding/late_bound.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::host {
namespace {

class ScriptRankedResults : public RankedResults, public LateBound {
 public:
  ScriptRankedResults(Engine& engine, duk_idx_t index) : LateBound(engine, index, "Top-N results") {}

  std::int32_t Count() override { return ToInt32(Ask("Count")); }
  void MoveFirst() override { Ask("MoveFirst"); }
  void MoveNext() override { Ask("MoveNext"); }
  void MoveTotals() override { Ask("MoveTotals"); }
  kalvo::Value Value(std::int16_t column) override { return Ask("Value", column); }
  void Sort(std::int16_t column, std::int32_t ascending) override { Ask("Sort", column, ascending); }
};

class ScriptTopNLoader : public TopNLoader, public LateBound {
 public:
  ScriptTopNLoader(Engine& engine, duk_idx_t index) : LateBound(engine, index, "Top-N loader") {}

  void Load(std::int16_t kind, std::string_view name, RankedResults& results) override {
    Ask("Load", kind, name, static_cast<Object&>(results));
  }
  void LoadGroup(std::int16_t kind, std::string_view group, RankedResults& results) override {
    Ask("LoadGroup", kind, group, static_cast<Object&>(results));
  }
  void LoadSite(std::int16_t kind, std::string_view site, RankedResults& results) override {
    Ask("LoadSite", kind, site, static_cast<Object&>(results));
  }
  void LoadOrg(std::int16_t kind, std::string_view organization, RankedResults& results) override {
    Ask("LoadOrg", kind, organization, static_cast<Object&>(results));
  }
};

}  // namespace

template <>
std::shared_ptr<RankedResults> Adapt<RankedResults>(Engine& engine, duk_idx_t index) {
  return std::make_shared<ScriptRankedResults>(engine, index);
}

template <>
std::shared_ptr<TopNLoader> Adapt<TopNLoader>(Engine& engine, duk_idx_t index) {
  return std::make_shared<ScriptTopNLoader>(engine, index);
}

}  // namespace kalvo::host
