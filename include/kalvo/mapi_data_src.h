#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "kalvo/platform/locale.h"
#include "kalvo/table_row_source.h"

namespace kalvo {

class Listing;
class LiveContainer;
class Steps;
enum class LiveOpen : std::uint8_t;
struct LiveScope;
struct LiveTableRow;

// The row source of the live mailbox tables: the folders or messages of a folder, or the attachments of a
// message, listed and sorted by the session's browsing object. Users see their own mailbox, administrators every
// mailbox and the public folders.
class MapiDataSrc : public TableRowSource {
 public:
  explicit MapiDataSrc(const Locale& locale = kEnglishUnitedStates);
  ~MapiDataSrc() override;

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

 private:
  bool TakeLiveContainer(Steps& steps);
  LiveTableRow TableRow(Steps& steps, LiveOpen opens);
  bool MayListMailbox(Steps& steps, const LiveScope& scope);
  bool MayListPublicFolders(Steps& steps);
  bool GoToMailboxFolder(Steps& steps, const LiveScope& scope);
  bool GoToPublicFolder(Steps& steps, const LiveScope& scope);
  bool GoToPublicFolderByPath(Steps& steps, const LiveScope& scope);
  bool GoToPublicFolderById(Steps& steps, const LiveScope& scope);
  void TracePosition(Steps& steps, std::string_view id);
  std::int16_t SortRows(Steps& steps);

  const Locale& locale_;
  std::shared_ptr<LiveContainer> live_;
  std::shared_ptr<Listing> listing_;
  bool totals_ = false;
};

}  // namespace kalvo
