#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/audit/trail.h"
#include "host/parts/parts.h"
#include "host/script/page/site.h"
#include "host/web/acting/tokens.h"
#include "support/temporary_folder.h"

namespace kalvo::test {

// The small sample's database and mail store, and pages run over them.
class SampleSite {
 public:
  SampleSite();

  struct Answer {
    host::PageHead head;
    std::string body;
  };

  // Runs a page of a folder as a user. `rights` are the session values that are "Yes"; with a form it is posted to.
  Answer Run(const std::filesystem::path& root, const std::string& page, const std::string& query,
             const std::string& logon, const std::vector<std::string>& rights = {}, const std::string& form = "");

  std::shared_ptr<LiveContainer> Live() { return parts_->GetLiveDrillerMaker()(""); }
  std::filesystem::path Mail() const { return folder_.Path() / "mail"; }

 private:
  TemporaryFolder folder_;
  std::unique_ptr<host::Parts> parts_;
  web::Tokens tokens_{folder_.Path() / "tokens"};
  audit::Trail trail_{folder_.Path() / "audit", [](std::string_view) {}};
};

// The identifier of the item that comes first when a listing is sorted by a field, the largest first.
std::string FirstBy(LiveContainer& live, const std::string& field);

std::string Encoded(const std::string& text);

}  // namespace kalvo::test
