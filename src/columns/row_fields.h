#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace kalvo {

// The fields that cells and links read beside a column's own. Those of a Top-N table are named by their numbers.
enum class RowField : std::uint8_t {
  AlertTypeCode,
  AlertedResource,
  Attrib2,
  Attrib3,
  Attrib5,
  ComputerName,
  DefaultGroup,
  ExchangeId,
  GroupName,
  HasAttachment,
  Identifier,
  LastQuickScan,
  MbDistName,
  Missing,
  RecipientName,
  ServerState,
  RankedPublicFolder,
  RankedMessage,
  RankedContainer,
  RankedServer,
  RankedMailbox,
  RankedAttachment,
};

// clang-format off
struct RowFieldRow { RowField field; std::string_view name; };

inline constexpr RowFieldRow kRowFields[] = {
  {RowField::AlertTypeCode,      "AlertTypeCode"},
  {RowField::AlertedResource,    "AlertedResource"},
  {RowField::Attrib2,            "Attrib2"},
  {RowField::Attrib3,            "Attrib3"},
  {RowField::Attrib5,            "Attrib5"},
  {RowField::ComputerName,       "ComputerName"},
  {RowField::DefaultGroup,       "DefaultGroup"},
  {RowField::ExchangeId,         "ExchangeId"},
  {RowField::GroupName,          "GroupName"},
  {RowField::HasAttachment,      "HasAttachment"},
  {RowField::Identifier,         "Identifier"},
  {RowField::LastQuickScan,      "LastQuickScan"},
  {RowField::MbDistName,         "MbDistName"},
  {RowField::Missing,            "Missing"},
  {RowField::RecipientName,      "RecipientName"},
  {RowField::ServerState,        "ServerState"},
  {RowField::RankedPublicFolder, "3"},
  {RowField::RankedMessage,      "11"},
  {RowField::RankedContainer,    "12"},
  {RowField::RankedServer,       "15"},
  {RowField::RankedMailbox,      "16"},
  {RowField::RankedAttachment,   "18"},
};
// clang-format on

inline constexpr std::size_t kRowFieldCount = std::size(kRowFields);

constexpr bool RowFieldsAreIndexed() {
  for (std::size_t i = 0; i < kRowFieldCount; ++i) {
    if (static_cast<std::size_t>(kRowFields[i].field) != i) return false;
  }
  return true;
}
static_assert(RowFieldsAreIndexed());

constexpr std::string_view NameOf(RowField field) { return kRowFields[static_cast<std::size_t>(field)].name; }

}  // namespace kalvo
