#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/parts/parts.h"

namespace kalvo {
class Connection;
class Database;
}  // namespace kalvo

namespace kalvo::host {

// What was found out about one promise of a data source by putting it to the test.
struct Proof {
  enum class Outcome { NotMade, Holds, Broken };
  Outcome outcome = Outcome::NotMade;
  std::string finding;  // a sentence without its point

  bool operator==(const Proof&) const = default;
};

struct DatabaseProof {
  Proof readsOnly;  // every write was refused
  Proof stops;      // a statement ended at its time limit, and the connection served on

  bool Holds() const { return readsOnly.outcome == Proof::Outcome::Holds && stops.outcome == Proof::Outcome::Holds; }

  // The first finding of what could not be tried, or of what is broken; "" when nothing is.
  std::string NotMade() const { return FirstFinding(Proof::Outcome::NotMade); }
  std::string Broken() const { return FirstFinding(Proof::Outcome::Broken); }

 private:
  std::string FirstFinding(Proof::Outcome outcome) const;
};

// Tries to write. Each attempt changes no row even where it is taken, and is undone at once.
Proof ProveReadOnly(Connection& connection);

// Runs something slow on a database with a short time limit.
Proof ProveStops(Database& impatient, std::string_view dataSource);

// Both, on connections of their own. A data source that cannot be reached leaves both unmade.
DatabaseProof ProveDatabase(const PartsSettings& settings);

// The same in a process of its own, which is given ten seconds: the caller stays without connections and threads, and
// a data source that holds a statement for longer is told, not waited for.
DatabaseProof ProveDatabaseAside(const PartsSettings& settings);

}  // namespace kalvo::host
