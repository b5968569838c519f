#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "kalvo/platform/ranking.h"

namespace kalvo::ranking {

// What the fields of a ranked row are, by number. A row holds those of its kind; the others are empty.
enum Field : std::int16_t {
  kMailboxId = 1,
  kMailboxName = 2,
  kPublicFolderId = 3,
  kPublicFolderName = 4,  // its path
  kMessages = 7,
  kSpace = 8,      // bytes
  kModified = 10,  // of a mailbox or public folder: a date serial
  kMessageId = 11,
  kFolderId = 12,
  kMessageModified = 13,  // a date serial
  kMessageSize = 14,      // bytes
  kServer = 15,
  kMailbox = 16,        // by which the mailbox is found: its distinguished name; a public folder's path
  kAverageSize = 17,    // bytes a message
  kHasAttachment = 18,  // 0: none
};

inline constexpr std::int16_t kFirstField = 1;
inline constexpr std::int16_t kLastField = 18;

// Ranked rows in memory. Whoever loads it adds rows, the first first, and sets their fields; it knows nothing of
// where they come from. It stands on the first row until it is moved.
class ResultSet : public RankedResults {
 public:
  // Drops all rows.
  void Clear();

  // Adds a row, which `Set` fills from here on.
  void AddRow();

  // A field of the row added last. Fails with 9 for a number outside 1 to 18, and with 91 before the first row.
  void Set(std::int16_t field, kalvo::Value value);

  std::int32_t Count() override;
  void MoveFirst() override;

  // Past the end every field answers "", and moving on changes nothing.
  void MoveNext() override;

  // The totals row holds the sums of fields 7, 8 and 14 over all rows; a field that no row has has none.
  void MoveTotals() override;

  kalvo::Value Value(std::int16_t column) override;

  // Numbers and dates are compared as numbers, texts without regard to case; what has no value comes first,
  // numbers come before texts. Leaves the first row current. Fails with 9 for a number outside 1 to 18.
  void Sort(std::int16_t column, std::int32_t ascending) override;

 private:
  using Row = std::array<kalvo::Value, kLastField + 1>;

  void AddUp(std::int16_t column);

  std::vector<Row> rows_;
  Row totals_;
  std::size_t current_ = 0;
  bool onTotals_ = false;
};

}  // namespace kalvo::ranking
