#pragma once

#include "host/script/page/page_objects.h"
#include "kalvo/platform/ranking.h"

namespace kalvo::host {

// The Top-N loader of one page: the host's own, where the session does not declare objects of its own for it. A
// static "gTopNServerLoader" or "gTopNMailboxGroupLoader" serves as that loader, and "gTopNResults" as the result
// set; where one is a script function, each report has an object of its own made by it. A loader and the result
// set that it fills belong together.
class PageRanking : public TopNFactory {
 public:
  PageRanking(Engine& engine, SessionObject& session, TopNFactory& own)
      : engine_(engine), session_(session), own_(own) {}

  std::shared_ptr<RankedResults> NewResults() override;
  std::shared_ptr<TopNLoader> NewServerLoader() override;
  std::shared_ptr<TopNLoader> NewMailboxGroupLoader() override;

 private:
  template <typename T>
  std::shared_ptr<T> Declared(const char* name);

  Engine& engine_;
  SessionObject& session_;
  TopNFactory& own_;
};

}  // namespace kalvo::host
