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

// The catalogue of every column, filled when it is made. Columns are shared: each id answers one object.
class KalvoColumnDatabase : public ColumnCatalogue {
 public:
  KalvoColumnDatabase();

  // The column of an id, null for an id that has none. Fails with 9 outside of 1 to 128.
  std::shared_ptr<TableColumn> GetColumn(std::int16_t nColumnId) const;

  // Each makes the columns of one group anew. The constructor runs them all, in this order.
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

 private:
  void MakeGroup(columns::Group group);
  const std::shared_ptr<TableColumn>& Slot(std::int16_t id) const;

  std::array<std::shared_ptr<TableColumn>, COL_TOTALCOLUMNS> slots_;  // slot i holds id i + 1
};

}  // namespace kalvo
