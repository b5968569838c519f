#include "adapters/ranking/make_ranking.h"

#include "adapters/ranking/loader.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/error.h"

namespace kalvo::ranking {
namespace {

class Factory : public TopNFactory {
 public:
  Factory(Database& database, const Settings& settings) : reader_(database, settings) {}

  std::shared_ptr<RankedResults> NewResults() override { return std::make_shared<ResultSet>(); }
  std::shared_ptr<TopNLoader> NewServerLoader() override { return std::make_shared<ServerLoader>(reader_); }
  std::shared_ptr<TopNLoader> NewMailboxGroupLoader() override { return std::make_shared<MailboxGroupLoader>(reader_); }

 private:
  RankingReader reader_;
};

}  // namespace

std::unique_ptr<TopNFactory> MakeRanking(Database& database, const Settings& settings) {
  if (settings.rows < 1 || settings.oldDays < 0) {
    throw Error(codes::kFailed, Built([&](std::string& out) {
                  Append(out, "A Top-N of ", settings.rows, " rows and messages old after ", settings.oldDays,
                         " days cannot be made; rows start at 1 and days at 0.");
                }));
  }
  return std::make_unique<Factory>(database, settings);
}

}  // namespace kalvo::ranking
