#include "host/parts/telling_database.h"

#include <string>

#include "kalvo/platform/append.h"
#include "kalvo/platform/error.h"

namespace kalvo::host {

TellingDatabase::TellingDatabase(std::unique_ptr<Database> database, Tell tell)
    : database_(std::move(database)), tell_(std::move(tell)) {}

std::unique_ptr<Connection> TellingDatabase::Connect(std::string_view dataSource) {
  try {
    return database_->Connect(dataSource);
  } catch (const Error& error) {
    const std::time_t now = std::time(nullptr);
    if (told_.exchange(now) != now) {
      tell_(Built([&](std::string& out) {
        Append(out, "the data source ", dataSource, " cannot be opened: ", error.Description());
      }));
    }
    throw;
  }
}

}  // namespace kalvo::host
