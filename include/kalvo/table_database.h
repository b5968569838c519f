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

// The catalogue of every report table, filled when it is made. Tables are shared: each id answers one object.
class KalvoTableDatabase : public Object {
 public:
  explicit KalvoTableDatabase(const Platform& platform);

  // True for every id: what is no slot is found out by the slot lookup.
  bool ValidTable(std::int32_t tableId) const;

  // Whether the slot is empty. Fails with 9 outside of 1 to 68.
  bool IsTableNull(std::int32_t nTableId) const;

  // The table of an id, null for an empty slot. Fails with 9 outside of 1 to 68.
  std::shared_ptr<Table> GetTable(std::int32_t tableId) const;

  // Each makes the tables of one group anew. The constructor runs them all, in this order.
  void InitializeGeneralTables();
  void InitializeTaskTables();
  void InitializeResourceTables();
  void InitializeConfigurationTables();
  void InitializeTopNTables();
  void InitializeMAPITables();

 private:
  void MakeGroup(tables::Group group);
  const std::shared_ptr<Table>& Slot(std::int32_t id) const;

  const Platform& platform_;
  std::array<std::shared_ptr<Table>, TABLE_TOTALTABLES> slots_;  // slot i holds id i + 1
};

}  // namespace kalvo
