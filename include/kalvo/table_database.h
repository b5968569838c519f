#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "kalvo/enumerations.h"
#include "kalvo/platform/platform.h"
#include "kalvo/platform/value.h"

namespace kalvo {

class Table;
namespace tables {
enum class Group : std::uint8_t;
}

// The catalogue of every report table. What a table is, is shared by all catalogues; the objects are the catalogue's
// own, each made when it is first asked for: an id answers one object.
class KalvoTableDatabase : public Object {
 public:
  explicit KalvoTableDatabase(const Platform& platform) : platform_(platform) {}

  // True for every id: an id without a slot is found out by the slot lookup.
  bool ValidTable(std::int32_t tableId) const;

  // Whether the slot is empty. Fails with 9 outside of 1 to 68.
  bool IsTableNull(std::int32_t nTableId) const;

  // The table of an id, null for an empty slot. Fails with 9 outside of 1 to 68.
  std::shared_ptr<Table> GetTable(std::int32_t tableId) const;

  // Each makes the tables of one group again: their ids answer other objects from then on.
  void InitializeGeneralTables();
  void InitializeTaskTables();
  void InitializeResourceTables();
  void InitializeConfigurationTables();
  void InitializeTopNTables();
  void InitializeMAPITables();

 private:
  void MakeGroup(tables::Group group);

  const Platform& platform_;

  // Slot i holds id i + 1; null until it is asked for.
  mutable std::array<std::shared_ptr<Table>, TABLE_TOTALTABLES> slots_;
};

}  // namespace kalvo
