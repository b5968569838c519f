#pragma once

#include <cstdint>

#include "kalvo/enumerations.h"

namespace kalvo {

enum class LiveOpen : std::uint8_t { Folder, Message };
enum class LiveStore : std::uint8_t { Mailbox, PublicFolders };
enum class LiveItems : std::uint8_t { Folders, Messages, Attachments };

struct LiveTableRow {
  KalvoTableConstants table;
  LiveOpen opens;
  LiveStore store;
  LiveItems items;
};

// What each live mailbox table opens and lists.
// clang-format off
inline constexpr LiveTableRow kLiveTables[] = {
  {TABLE_MAPI_MESSAGES,                 LiveOpen::Folder,  LiveStore::Mailbox,       LiveItems::Messages},
  {TABLE_MAPI_FOLDERS,                  LiveOpen::Folder,  LiveStore::Mailbox,       LiveItems::Folders},
  {TABLE_MAPI_PUBLICFOLDER_MESSAGES,    LiveOpen::Folder,  LiveStore::PublicFolders, LiveItems::Messages},
  {TABLE_MAPI_PUBLICFOLDER_FOLDERS,     LiveOpen::Folder,  LiveStore::PublicFolders, LiveItems::Folders},
  {TABLE_MAPI_ATTACHMENTS,              LiveOpen::Message, LiveStore::Mailbox,       LiveItems::Attachments},
  {TABLE_MAPI_PUBLICFOLDER_ATTACHMENTS, LiveOpen::Message, LiveStore::PublicFolders, LiveItems::Attachments},
};
// clang-format on

}  // namespace kalvo
