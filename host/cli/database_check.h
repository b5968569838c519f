#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "host/parts/database_proof.h"

namespace kalvo {
struct Platform;
}

namespace kalvo::host {

struct CheckOptions {
  std::string where;   // what the data source is, as the user named it: "sqlite:kalvo.db"; shown, not read
  std::string driver;  // the driver and its version, where the host knows them; shown, not read
  std::optional<DatabaseProof> proof;  // what was found by trying, where it was tried
};

// Checks the reporting database behind the platform and writes what it finds: whether the data source opens,
// what server answers, what was proved of it, whether it has every table and column that the reports read (a missing
// one is named with the reports that need it), whether its history numbers are disjoint, and whether the SQL of every
// report runs, in one scope of the data itself. 0 when all is well, 1 when something is not.
int CheckDatabase(const Platform& platform, const CheckOptions& options, std::ostream& out);

}  // namespace kalvo::host
