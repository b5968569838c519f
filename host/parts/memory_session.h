#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "host/script/page/page_request.h"
#include "host/script/page/page_session.h"

namespace kalvo::host {

// Makes the live mailbox browsing object of a session, for the logon name of whoever browses.
using LiveDrillerMaker = std::function<std::shared_ptr<LiveContainer>(const std::string& who)>;

// A session that lives as long as this object: its values are given at the start, and what a page writes is
// there for the rest of that page.
class MemorySession final : public PageSession {
 public:
  // An empty maker means that mailboxes are not configured.
  explicit MemorySession(const NamedTexts& values, LiveDrillerMaker makeDriller = {}, std::string who = "");

  Value Get(std::string_view name) override;
  void Set(std::string_view name, const Value& value) override;
  void Abandon() override;
  std::shared_ptr<LiveContainer> LiveDriller() override;

 private:
  std::map<std::string, Value> values_;  // by lower-case name
  LiveDrillerMaker makeDriller_;
  std::string who_;
  std::shared_ptr<LiveContainer> driller_;
};

}  // namespace kalvo::host
