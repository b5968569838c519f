#pragma once

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kalvo/platform/database.h"
#include "kalvo/platform/error.h"
#include "kalvo/row_source.h"

namespace kalvo::test {

// One row of stored values that can be asked for by their names, too.
class StoredRowSource : public RowSource {
 public:
  void Add(std::string name, StoredValue value) {
    names_.push_back(std::move(name));
    values_.push_back(value);
  }
  void AddText(std::string name, std::string_view text, StoredValue::Kind kind = StoredValue::Kind::Text) {
    const std::string& kept = texts_.emplace_back(text);
    StoredValue value{};
    value.kind = kind;
    value.bytes = kept.data();
    value.size = static_cast<std::uint32_t>(kept.size());
    Add(std::move(name), value);
  }
  void AddBoolean(std::string name, bool truth) {
    StoredValue value{};
    value.kind = StoredValue::Kind::Boolean;
    value.integer = truth;
    Add(std::move(name), value);
  }
  void AddInteger(std::string name, std::int64_t number) {
    StoredValue value{};
    value.kind = StoredValue::Kind::Integer;
    value.integer = number;
    Add(std::move(name), value);
  }
  void AddNumber(std::string name, double number, StoredValue::Kind kind) {
    StoredValue value{};
    value.kind = kind;
    value.number = number;
    Add(std::move(name), value);
  }

  std::int16_t OpenDS() override { return 0; }
  std::int32_t CloseDS() override { return 0; }
  std::int16_t MoveFirst() override { return 0; }
  std::int16_t MoveNext() override { return 0; }
  std::int16_t MoveTotals() override { return 0; }
  std::int32_t RecordCount() override { return 1; }
  std::int16_t GetRowIndex() override { return 1; }

  // A value that has no text reads "", as it does in the source over the database.
  std::string_view GetField(std::string_view name) override {
    answer_.clear();
    const auto field = StoredField(name);
    Trap trap;
    if (field)
      trap([&] { answer_ = TextOf(values_[static_cast<std::size_t>(*field)], kEnglishUnitedStates, scratch_); });
    return answer_;
  }
  std::optional<std::string_view> GetIdentifier(std::string_view name) override { return GetField(name); }

  std::optional<std::int32_t> StoredField(std::string_view name) override {
    for (std::size_t i = 0; i < names_.size(); ++i) {
      if (names_[i] == name) return static_cast<std::int32_t>(i);
    }
    return std::nullopt;
  }
  const StoredValue* StoredRow() override { return values_.data(); }

 private:
  std::vector<std::string> names_;
  std::vector<StoredValue> values_;
  std::deque<std::string> texts_;
  std::string scratch_, answer_;
};

}  // namespace kalvo::test
