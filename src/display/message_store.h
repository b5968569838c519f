#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kalvo/display.h"
#include "kalvo/platform/live_mailbox.h"

namespace kalvo {

inline constexpr std::string_view kSingleServerPage = "../Resources/SingleServerReports.asp";
inline constexpr std::string_view kMailboxPage = "../Resources/MailboxSummary.asp";
inline constexpr std::string_view kPublicFolderPage = "../Resources/PublicFolderSummary.asp";

// One of the two places where messages lie, as the form that deletes one has to tell.
struct MessageStore {
  std::string_view page;         // that shows it
  std::string_view idParameter;  // the folder's, of that page
  bool hasPath;                  // whether the page knows a folder by its path, too
  std::int32_t flags;
};

inline constexpr MessageStore kMailboxStore{kMailboxPage, "ContainerId", true, 0};
inline constexpr MessageStore kPublicFolderStore{kPublicFolderPage, "PublicFolderId", false, live::kPublicFolders};

// Where the console goes on when a message of a folder has been deleted. `path` answers the folder's path, and is asked
// where the store has them.
template <typename Path>
std::string ContinueAddress(const Display& display, const MessageStore& store, std::string_view server,
                            std::string_view mailbox, Path&& path, std::string_view folderId) {
  std::string address(store.page);
  display.AppendParamToURL(address, "Server", server);
  display.AppendParamToURL(address, "Mailbox", mailbox);
  if (store.hasPath) display.AppendParamToURL(address, "Container", path());
  display.AppendParamToURL(address, store.idParameter, folderId);
  return address;
}

}  // namespace kalvo
