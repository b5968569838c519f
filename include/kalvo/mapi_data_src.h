#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "datasrc/answer.h"
#include "kalvo/platform/locale.h"
#include "kalvo/row_source.h"

namespace kalvo {

class Context;
class Listing;
class LiveContainer;
class Table;
class Trap;
enum class LiveOpen : std::uint8_t;
struct LiveScope;
struct LiveTableRow;

// The row source of the live mailbox tables: the folders or messages of a folder, or the attachments of a
// message, listed and sorted by the session's browsing object. Users see their own mailbox, administrators every
// mailbox and the public folders.
class MapiDataSrc : public RowSource {
 public:
  explicit MapiDataSrc(const Locale& locale = kEnglishUnitedStates);
  ~MapiDataSrc() override;

  void Initialize(Table& KalvoTable, std::string_view ResourceName, Context& Ctxt);

  // Opens a message when the request has a "MessageId", a folder otherwise. 0, or -1 after a failure.
  std::int16_t OpenDS() override;
  std::int16_t OpenFolderDS();
  std::int16_t OpenMessageDS();
  std::int32_t CloseDS() override { return 0; }
  std::int16_t MoveFirst() override;
  std::int16_t MoveNext() override;

  // From here on every field reads the listing's totals.
  std::int16_t MoveTotals() override;

  std::string_view GetField(std::string_view szFieldName) override;
  std::int32_t RecordCount() override { return recordCount_; }
  std::int16_t GetRowIndex() override;

 private:
  bool TakeLiveContainer(Trap& trap);
  LiveTableRow TableRow(Trap& trap, LiveOpen opens);
  bool MayListMailbox(Trap& trap, const LiveScope& scope);
  bool MayListPublicFolders(Trap& trap);
  bool Refuse(Trap& trap);
  bool GoToMailboxFolder(Trap& trap, const LiveScope& scope);
  bool GoToPublicFolder(Trap& trap, const LiveScope& scope);
  bool GoToPublicFolderByPath(Trap& trap, const LiveScope& scope);
  bool GoToPublicFolderById(Trap& trap, const LiveScope& scope);
  void TracePosition(Trap& trap, std::string_view id);
  std::int16_t SortRows(Trap& trap);

  const Locale& locale_;
  std::shared_ptr<Table> table_;
  std::string resourceName_;
  std::shared_ptr<Context> context_;
  std::shared_ptr<LiveContainer> live_;
  std::shared_ptr<Listing> listing_;
  Answer answer_;
  std::int32_t recordCount_ = 0;
  std::int32_t rowIndex_ = 0;
  bool totals_ = false;
};

}  // namespace kalvo
