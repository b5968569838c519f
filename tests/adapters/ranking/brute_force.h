#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/ranking/statement.h"

namespace kalvo::test {

using ranking::Scope;

// A ranked row as it is expected: the texts of its fields by number. Fields that it does not name are "".
using ExpectedRow = std::map<std::int16_t, std::string>;

// All mailboxes, public folders and messages of a sample, read row by row, from which every ranking is made anew
// by looking at each of them. It reads no ranking.
class BruteForce {
 public:
  explicit BruteForce(const std::string& sqliteFile);

  std::vector<ExpectedRow> Rank(std::int16_t kind, Scope scope, std::string_view name, std::size_t rows,
                                double oldDays) const;

  // Every name that a scope can have.
  std::vector<std::string> Names(Scope scope) const;

 private:
  struct Server {
    std::string name, group, site, organization;
    bool managed = false;
    std::optional<double> lastDetailScan;
  };
  struct Message {
    std::string id, folderId;
    std::int64_t size = 0;
    std::optional<double> modified;
    std::string hasAttachment;
    std::int64_t number = 0;
  };
  struct Owner {  // a mailbox or a public folder
    std::int64_t number = 0, server = 0;
    std::string id, name, address;
    std::vector<std::string> groups;
    std::vector<Message> messages;
  };
  struct Candidate;

  bool InScope(const Owner& owner, Scope scope, std::string_view name) const;
  std::vector<Candidate> Candidates(std::int16_t kind, const Owner& owner, double oldDays) const;
  ExpectedRow Shown(std::int16_t kind, const Candidate& candidate) const;

  std::map<std::int64_t, Server> servers_;
  std::map<std::int64_t, Owner> mailboxes_, folders_;
  std::vector<std::string> mailboxGroups_;
};

}  // namespace kalvo::test
