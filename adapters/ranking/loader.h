#pragma once

#include "adapters/ranking/make_ranking.h"
#include "adapters/ranking/result_set.h"
#include "adapters/ranking/statement.h"
#include "kalvo/platform/database.h"

namespace kalvo::ranking {

// Reads rankings from the reporting database into result sets. What both loaders are made of.
class RankingReader {
 public:
  RankingReader(Database& database, const Settings& settings) : database_(database), settings_(settings) {}

  // Replaces the rows of `results`, which has to be a `ResultSet`: any other fails with 13. A scope that nobody
  // knows has no rows. Fails for an unknown kind and with the database's own errors; the rows are gone then.
  void Read(std::int16_t kind, Scope scope, std::string_view name, RankedResults& results) const;

 private:
  void Fill(ResultSet& results, const Kind& kind, const Rows& rows) const;

  Database& database_;
  Settings settings_;
};

class ServerLoader : public TopNLoader {
 public:
  explicit ServerLoader(const RankingReader& reader) : reader_(reader) {}

  void Load(std::int16_t kind, std::string_view name, RankedResults& results) override;
  void LoadGroup(std::int16_t kind, std::string_view group, RankedResults& results) override;
  void LoadSite(std::int16_t kind, std::string_view site, RankedResults& results) override;
  void LoadOrg(std::int16_t kind, std::string_view organization, RankedResults& results) override;

 private:
  RankingReader reader_;
};

// A mailbox group has no public folders: their kinds are empty.
class MailboxGroupLoader : public TopNLoader {
 public:
  explicit MailboxGroupLoader(const RankingReader& reader) : reader_(reader) {}

  void Load(std::int16_t kind, std::string_view name, RankedResults& results) override;
  void LoadGroup(std::int16_t kind, std::string_view group, RankedResults& results) override;
  void LoadSite(std::int16_t kind, std::string_view site, RankedResults& results) override;
  void LoadOrg(std::int16_t kind, std::string_view organization, RankedResults& results) override;

 private:
  RankingReader reader_;
};

}  // namespace kalvo::ranking
