#include "adapters/sql/block_store.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "adapters/sql/diagnostics.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/error.h"

namespace kalvo::sql {

namespace {

constexpr std::int32_t kBlockRows = 256;
constexpr std::size_t kPieceSize = 64 << 10;
constexpr std::size_t kOwnPiece = kPieceSize / 4;  // texts from this size on get a piece of their own

}  // namespace

const char* TextArena::Keep(std::string_view bytes) {
  if (bytes.size() >= kOwnPiece) {
    pieces_.push_back(std::make_unique_for_overwrite<char[]>(bytes.size()));
    memoryUse_ += bytes.size();
    return static_cast<const char*>(std::memcpy(pieces_.back().get(), bytes.data(), bytes.size()));
  }
  if (bytes.size() > left_) {
    pieces_.push_back(std::make_unique_for_overwrite<char[]>(kPieceSize));
    memoryUse_ += kPieceSize;
    free_ = pieces_.back().get();
    left_ = kPieceSize;
  }
  char* kept = free_;
  std::copy(bytes.begin(), bytes.end(), kept);
  free_ += bytes.size();
  left_ -= bytes.size();
  return kept;
}

BlockStore::BlockStore(std::int32_t fieldCount, const Locale& locale, std::size_t memoryLimit)
    : locale_(locale), fieldCount_(fieldCount), memoryLimit_(memoryLimit) {}

BlockStore::Cell& BlockStore::NextCell(Kind kind) {
  const std::int32_t row = rowCount_ % kBlockRows;
  if (row == 0 && nextField_ == 0) {
    CheckRows();
    blocks_.push_back(std::make_unique_for_overwrite<Cell[]>(static_cast<std::size_t>(kBlockRows) * fieldCount_));
    CheckMemory();
  }
  Cell& cell = blocks_.back()[static_cast<std::size_t>(row) * fieldCount_ + nextField_];
  cell.kind = kind;
  if (++nextField_ == fieldCount_) {
    nextField_ = 0;
    ++rowCount_;
  }
  return cell;
}

void BlockStore::CheckRows() const {
  static_assert(kMostRows % kBlockRows == 0);
  if (rowCount_ < kMostRows) return;
  throw DatabaseError("HY001",
                      Built([](std::string& out) { Append(out, "The result has more than ", kMostRows, " rows."); }));
}

void BlockStore::CheckMemory() const {
  const std::size_t cells = blocks_.size() * kBlockRows * fieldCount_ * sizeof(Cell);
  if (cells + arena_.MemoryUse() <= memoryLimit_) return;
  throw DatabaseError("HY001", Built([&](std::string& out) {
                        Append(out, "The result takes more than ", memoryLimit_ >> 20, " MiB of memory.");
                      }));
}

void BlockStore::AddNull() { NextCell(Kind::Null); }
void BlockStore::AddBoolean(bool truth) { NextCell(Kind::Boolean).integer = truth; }
void BlockStore::AddInteger(std::int64_t number) { NextCell(Kind::Integer).integer = number; }
void BlockStore::AddDouble(double number) { NextCell(Kind::Double).number = number; }
void BlockStore::AddDate(Date date) { NextCell(Kind::Date).number = date.serial; }
void BlockStore::AddText(std::string_view text) { AddKept(Kind::Text, text); }

void BlockStore::AddBytes(std::span<const std::uint8_t> bytes) {
  AddKept(Kind::Binary, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

void BlockStore::AddKept(Kind kind, std::string_view bytes) {
  if (bytes.size() > std::numeric_limits<std::uint32_t>::max()) {
    throw DatabaseError("HY001", "A value takes more than 4 GiB.");
  }
  const char* kept = arena_.Keep(bytes);
  CheckMemory();
  Cell& cell = NextCell(kind);
  cell.bytes = kept;
  cell.size = static_cast<std::uint32_t>(bytes.size());
}

const BlockStore::Cell& BlockStore::At(std::int32_t field, std::int32_t row) const {
  if (field < 0 || field >= fieldCount_ || row < 0 || row >= rowCount_) throw SubscriptOutOfRange();
  return blocks_[row / kBlockRows][static_cast<std::size_t>(row % kBlockRows) * fieldCount_ + field];
}

std::string_view BlockStore::Text(std::int32_t field, std::int32_t row, std::string& scratch) const {
  return TextOf(At(field, row), locale_, scratch);
}

std::optional<std::span<const std::uint8_t>> BlockStore::Binary(std::int32_t field, std::int32_t row) const {
  const Cell& cell = At(field, row);
  if (cell.kind == Kind::Null) return {};
  if (cell.kind != Kind::Binary) throw TypeMismatch();
  return std::span(reinterpret_cast<const std::uint8_t*>(cell.bytes), cell.size);
}

}  // namespace kalvo::sql
