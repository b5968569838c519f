#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "host/parts/session_driller.h"
#include "host/script/page/page_request.h"
#include "host/script/page/page_session.h"

namespace kalvo::host {

// A session that lives as long as this object: its values are given at the start, and what a page writes is
// there for the rest of that page.
class MemorySession final : public PageSession {
 public:
  explicit MemorySession(const NamedTexts& values, LiveDrillerMaker makeDriller = {}, std::string who = "");

  Value Get(std::string_view name) override;
  void Set(std::string_view name, const Value& value) override;
  std::vector<std::string> Names() override;
  void Abandon() override;
  std::shared_ptr<LiveContainer> LiveDriller() override { return driller_.Of(who_); }

 private:
  std::map<std::string, Value> values_;  // by lower-case name
  SessionDriller driller_;
  std::string who_;
};

}  // namespace kalvo::host
