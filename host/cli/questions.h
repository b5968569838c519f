#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kalvo {
class Database;
}

namespace kalvo::host {

// Runs single statements on the reporting database, each on a connection of its own: a failed one leaves no other
// out. Each fails with the statement's error.
class Questions {
 public:
  // The database outlives the questions.
  explicit Questions(Database& database) : database_(database) {}

  // The rows of a statement as texts.
  std::vector<std::vector<std::string>> Ask(std::string_view sql);

  // The names of a statement's fields, as the database spells them.
  std::vector<std::string> FieldNames(std::string_view sql);

 private:
  Database& database_;
};

}  // namespace kalvo::host
