#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fakes/steps.h"
#include "kalvo/platform/ranking.h"

namespace kalvo::test {

using RankedRow = std::map<std::int16_t, Value>;

// Rows of numbered fields and a totals row. Steps: Count, MoveFirst, MoveNext, MoveTotals, Value, Sort.
class FakeRankedResults : public RankedResults {
 public:
  FakeRankedResults(const std::vector<RankedRow>& rows, const RankedRow& totals,
                    const std::optional<std::int32_t>& count, Steps& steps)
      : rows_(rows), totals_(totals), count_(count), steps_(steps) {}

  std::int32_t Count() override { return steps_.Do("Count"), count_.value_or(static_cast<std::int32_t>(rows_.size())); }
  void MoveFirst() override { steps_.Do("MoveFirst"), at_ = 0, onTotals_ = false; }
  void MoveNext() override { steps_.Do("MoveNext"), ++at_, onTotals_ = false; }
  void MoveTotals() override { steps_.Do("MoveTotals"), onTotals_ = true; }
  kalvo::Value Value(std::int16_t column) override {
    steps_.Do("Value", column);
    if (!onTotals_ && at_ >= rows_.size()) return std::string();
    const RankedRow& row = onTotals_ ? totals_ : rows_[at_];
    const auto found = row.find(column);
    return found == row.end() ? kalvo::Value(std::string()) : found->second;
  }
  void Sort(std::int16_t column, std::int32_t ascending) override { steps_.Do("Sort", column, ascending); }

 private:
  const std::vector<RankedRow>& rows_;
  const RankedRow& totals_;
  const std::optional<std::int32_t>& count_;
  Steps& steps_;
  std::size_t at_ = 0;
  bool onTotals_ = false;
};

// Steps: "Server." or "MailboxGroup." and Load, LoadGroup, LoadSite, LoadOrg.
class FakeLoader : public TopNLoader {
 public:
  FakeLoader(std::string prefix, Steps& steps) : prefix_(std::move(prefix)), steps_(steps) {}

  void Load(std::int16_t kind, std::string_view name, RankedResults&) override { Do("Load", kind, name); }
  void LoadGroup(std::int16_t kind, std::string_view group, RankedResults&) override { Do("LoadGroup", kind, group); }
  void LoadSite(std::int16_t kind, std::string_view site, RankedResults&) override { Do("LoadSite", kind, site); }
  void LoadOrg(std::int16_t kind, std::string_view name, RankedResults&) override { Do("LoadOrg", kind, name); }

 private:
  void Do(std::string_view step, std::int16_t kind, std::string_view name) {
    steps_.Do(prefix_ + std::string(step), kind, name);
  }

  std::string prefix_;
  Steps& steps_;
};

// A Top-N component whose rows are written down. Its own steps: NewResults, NewServerLoader, NewMailboxGroupLoader.
class FakeRanking : public TopNFactory {
 public:
  std::vector<RankedRow> rows;
  RankedRow totals;
  std::optional<std::int32_t> count;  // what the results say that they have, where it is not the rows there are
  Steps steps;

  std::shared_ptr<RankedResults> NewResults() override {
    steps.Do("NewResults");
    return std::make_shared<FakeRankedResults>(rows, totals, count, steps);
  }
  std::shared_ptr<TopNLoader> NewServerLoader() override {
    steps.Do("NewServerLoader");
    return std::make_shared<FakeLoader>("Server.", steps);
  }
  std::shared_ptr<TopNLoader> NewMailboxGroupLoader() override {
    steps.Do("NewMailboxGroupLoader");
    return std::make_shared<FakeLoader>("MailboxGroup.", steps);
  }
};

}  // namespace kalvo::test
