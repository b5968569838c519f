#include "host/parts/proving_database.h"

#include "kalvo/platform/error.h"

namespace kalvo::host {

ProvingDatabase::ProvingDatabase(std::unique_ptr<Database> database, Prove prove)
    : database_(std::move(database)), prove_(std::move(prove)) {}

std::unique_ptr<Connection> ProvingDatabase::Connect(std::string_view dataSource) {
  auto connection = database_->Connect(dataSource);
  const std::lock_guard lock(mutex_);
  if (!proved_) {
    broken_ = prove_().Broken();
    proved_ = true;
  }
  if (!broken_.empty()) throw Error(codes::kFailed, "[HY000] " + InDescription(broken_));
  return connection;
}

}  // namespace kalvo::host
