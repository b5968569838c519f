#pragma once

#include <memory>
#include <string>

#include "adapters/ranking/statement.h"
#include "database/sample/sample.h"
#include "kalvo/platform/ranking.h"
#include "support/temporary_folder.h"

namespace kalvo::test {

using ranking::Scope;

inline constexpr Scope kScopes[] = {Scope::Server, Scope::ServerGroup, Scope::Site, Scope::Organization,
                                    Scope::MailboxGroup};

// The small sample in a file of its own, gone with the object.
class SmallSample {
 public:
  SmallSample() {
    sample::SilentProgress progress;
    sample::MakeSample({folder_.Path(), sample::SampleSize::Small, kSeed}, progress);
  }

  std::string File() const { return (folder_.Path() / "kalvo.db").string(); }

  static constexpr std::uint64_t kSeed = 1;

 private:
  TemporaryFolder folder_;
};

// Loads a ranking by the call that the scope asks for.
inline void Load(TopNFactory& factory, std::int16_t kind, Scope scope, std::string_view name, RankedResults& results) {
  const auto servers = factory.NewServerLoader();
  switch (scope) {
    case Scope::Server: return servers->Load(kind, name, results);
    case Scope::ServerGroup: return servers->LoadGroup(kind, name, results);
    case Scope::Site: return servers->LoadSite(kind, name, results);
    case Scope::Organization: return servers->LoadOrg(kind, name, results);
    case Scope::MailboxGroup: return factory.NewMailboxGroupLoader()->Load(kind, name, results);
  }
}

}  // namespace kalvo::test
