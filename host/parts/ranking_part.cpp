#include "host/parts/ranking_part.h"

#include "kalvo/platform/error.h"
#include "kalvo/platform/ranking.h"

#ifdef KALVO_HAS_RANKING
#include "adapters/ranking/make_ranking.h"
#endif

namespace kalvo::host {

#ifndef KALVO_HAS_RANKING
namespace {

class NoRanking : public TopNFactory {
 public:
  std::shared_ptr<RankedResults> NewResults() override { throw CannotCreateObject(); }
  std::shared_ptr<TopNLoader> NewServerLoader() override { throw CannotCreateObject(); }
  std::shared_ptr<TopNLoader> NewMailboxGroupLoader() override { throw CannotCreateObject(); }
};

}  // namespace
#endif

std::unique_ptr<TopNFactory> MakeRanking([[maybe_unused]] Database& database,
                                         [[maybe_unused]] const ranking::Settings& settings) {
#ifdef KALVO_HAS_RANKING
  return ranking::MakeRanking(database, settings);
#else
  return std::make_unique<NoRanking>();
#endif
}

}  // namespace kalvo::host
