#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fakes/steps.h"
#include "kalvo/row_source.h"

namespace kalvo::test {

// One row whose fields are written down; a field that it does not have reads "". Steps: GetField, GetIdentifier.
class FakeRowSource : public RowSource {
 public:
  std::map<std::string, std::string, std::less<>> fields;
  bool nullIdentifiers = false;
  Steps steps;

  std::int16_t OpenDS() override { return 0; }
  std::int32_t CloseDS() override { return 0; }
  std::int16_t MoveFirst() override { return 0; }
  std::int16_t MoveNext() override { return 0; }
  std::int16_t MoveTotals() override { return 0; }
  std::string_view GetField(std::string_view name) override {
    steps.Do("GetField", name);
    const auto found = fields.find(name);
    return found == fields.end() ? std::string_view() : std::string_view(found->second);
  }
  std::optional<std::string_view> GetIdentifier(std::string_view name) override {
    steps.Do("GetIdentifier", name);
    if (nullIdentifiers) return std::nullopt;
    const auto found = fields.find(name);
    return found == fields.end() ? std::string_view() : std::string_view(found->second);
  }
  std::int32_t RecordCount() override { return 1; }
  std::int16_t GetRowIndex() override { return 1; }
};

}  // namespace kalvo::test
