#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "adapters/ranking/kinds.h"
#include "adapters/ranking/make_ranking.h"

namespace kalvo::ranking {

enum class Scope : std::uint8_t { Server, ServerGroup, Site, Organization, MailboxGroup };

// The one statement of a Top-N, complete, and the text it was made from.
struct Statement {
  std::string sql;
  std::string pattern;
};

// Merges the rankings of the scope's servers, or reads that of a mailbox group, and joins what the rows show: at
// most N rows of each server over the ranking's key, then N items by theirs. The first field is the amount ranked
// by; those of the kind's subject follow.
Statement MakeStatement(const Kind& kind, Scope scope, std::string_view name, const Settings& settings);

}  // namespace kalvo::ranking
