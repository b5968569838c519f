#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "kalvo/platform/value.h"

namespace kalvo {

// A ranked result set: made empty, filled by a loader, read one row at a time. Fields are numbered; a number
// that the result set does not hold answers "".
class RankedResults : public Object {
 public:
  virtual std::int32_t Count() = 0;

  virtual void MoveFirst() = 0;

  // Allowed from the last row: the results then stand past their end, where every field answers "".
  virtual void MoveNext() = 0;

  // Makes the totals row current.
  virtual void MoveTotals() = 0;

  // A field of the current row.
  virtual kalvo::Value Value(std::int16_t column) = 0;

  // Reorders the rows by one field: ascending 1, descending 0. Stable; never ranks again.
  virtual void Sort(std::int16_t column, std::int32_t ascending) = 0;
};

// Fills result sets with the best of a kind (1 to 22, the loader's own codes) within a scope.
class TopNLoader : public Object {
 public:
  // One server by its name, or one mailbox group by its name: the loader knows which it serves.
  virtual void Load(std::int16_t kind, std::string_view name, RankedResults& results) = 0;

  // The servers of a server group, a site, an organization. A mailbox-group loader fails with 438.
  virtual void LoadGroup(std::int16_t kind, std::string_view group, RankedResults& results) = 0;
  virtual void LoadSite(std::int16_t kind, std::string_view site, RankedResults& results) = 0;
  virtual void LoadOrg(std::int16_t kind, std::string_view organization, RankedResults& results) = 0;
};

// Makes the Top-N loader's objects. Each may fail with 429.
class TopNFactory {
 public:
  virtual ~TopNFactory() = default;

  virtual std::shared_ptr<RankedResults> NewResults() = 0;
  virtual std::shared_ptr<TopNLoader> NewServerLoader() = 0;
  virtual std::shared_ptr<TopNLoader> NewMailboxGroupLoader() = 0;
};

}  // namespace kalvo
