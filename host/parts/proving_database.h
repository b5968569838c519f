#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "host/parts/database_proof.h"
#include "kalvo/platform/database.h"

namespace kalvo::host {

// A database that could not be proved beforehand: it is when it first opens. One that takes writes, or that does not
// stop a statement, is closed again, and every `Connect` from then on fails with 0x80004005.
class ProvingDatabase final : public Database {
 public:
  using Prove = std::function<DatabaseProof()>;

  ProvingDatabase(std::unique_ptr<Database> database, Prove prove);

  std::unique_ptr<Connection> Connect(std::string_view dataSource) override;

 private:
  std::unique_ptr<Database> database_;
  Prove prove_;
  std::mutex mutex_;
  bool proved_ = false;
  std::string broken_;  // why nobody may use it
};

}  // namespace kalvo::host
