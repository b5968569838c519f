#pragma once

#include <atomic>
#include <ctime>
#include <functional>
#include <memory>
#include <string_view>

#include "kalvo/platform/database.h"

namespace kalvo::host {

// A database that tells its operator why it could not be opened. A page tells its reader; the operator may never see
// the page.
class TellingDatabase final : public Database {
 public:
  using Tell = std::function<void(std::string_view)>;

  TellingDatabase(std::unique_ptr<Database> database, Tell tell);

  // Tells no more than once a second.
  std::unique_ptr<Connection> Connect(std::string_view dataSource) override;

 private:
  std::unique_ptr<Database> database_;
  Tell tell_;
  std::atomic<std::time_t> told_{0};
};

}  // namespace kalvo::host
