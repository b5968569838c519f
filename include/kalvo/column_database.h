#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "kalvo/enumerations.h"
#include "kalvo/table_column.h"

namespace kalvo {

namespace columns {
enum class Group : std::uint8_t;
}

// The catalogue of every column. What a column is, is shared by all catalogues; the objects are the catalogue's own,
// each made when it is first asked for: an id answers one object.
class KalvoColumnDatabase : public ColumnCatalogue {
 public:
  // The column of an id, null for an id that has none. Fails with 9 outside of 1 to 128.
  std::shared_ptr<TableColumn> GetColumn(std::int16_t nColumnId) const;

  // Each makes the columns of one group again: their ids answer other objects from then on.
  void Initialize_RMC_Alert();
  void Initialize_EXDB_Server();
  void Initialize_EXDB_ServerTotals();
  void Initialize_EXDB_ServerBackup();
  void Initialize_EXDB_Group();
  void Initialize_EXDB_MailboxGroup();
  void Initialize_EXDB_MailboxGroupTotals();
  void Initialize_EXDB_QuotaViolation();
  void Initialize_EXDB_DbFile();
  void Initialize_EXDB_DbFileHistory();
  void Initialize_EXDB_DbFileSystem();
  void Initialize_EXDB_Mailbox();
  void Initialize_TOPN_Columns();
  void Initialize_MAPI_Columns();
  void Initialize_Task_Columns();

  std::shared_ptr<TableColumn> Column(std::int16_t id) override { return GetColumn(id); }
  bool SeesCalls() const override { return false; }

 private:
  void MakeGroup(columns::Group group);

  // Slot i holds id i + 1; null until it is asked for.
  mutable std::array<std::shared_ptr<TableColumn>, COL_TOTALCOLUMNS> slots_;
};

}  // namespace kalvo
