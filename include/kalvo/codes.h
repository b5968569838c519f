#pragma once

#include <cstdint>

// Numbers in which the reporting database and the ranking speak, wherever more than one part of the system reads or
// writes them.
namespace kalvo {

// "ServerState" of a server that is managed; every other one is not.
inline constexpr std::int16_t kServerManaged = 2;

// "AlertTypeCode" of the alerts that a report or a link tells from the others.
namespace alerts {

inline constexpr std::int32_t kNewServer = 5018;     // a server was found that is not managed
inline constexpr std::int32_t kBackupLength = 5022;  // a backup took longer than the policy allows
inline constexpr std::int32_t kSilentServer = 5023;  // a server's agent does not answer

}  // namespace alerts

// What a ranking is made of and by: the numbers that a Top-N report asks its loader for, and "Kind" of the rankings in
// the reporting database. No other number is a kind.
namespace kinds {

inline constexpr std::int16_t kMailboxMessages = 1;
inline constexpr std::int16_t kMailboxSpace = 2;
inline constexpr std::int16_t kFolderMessages = 4;  // of public folders, as all "Folder" here
inline constexpr std::int16_t kFolderSpace = 5;
inline constexpr std::int16_t kOldestMailboxMessages = 6;
inline constexpr std::int16_t kOldestFolderMessages = 7;
inline constexpr std::int16_t kMailboxOldMessages = 8;
inline constexpr std::int16_t kMailboxOldSpace = 9;
inline constexpr std::int16_t kFolderOldMessages = 11;
inline constexpr std::int16_t kFolderOldSpace = 12;
inline constexpr std::int16_t kStaleMailboxes = 13;
inline constexpr std::int16_t kStaleFolders = 14;
inline constexpr std::int16_t kLargestMailboxMessages = 17;
inline constexpr std::int16_t kLargestOldMailboxMessages = 18;
inline constexpr std::int16_t kLargestFolderMessages = 19;
inline constexpr std::int16_t kLargestOldFolderMessages = 20;
inline constexpr std::int16_t kMailboxAverageSize = 21;
inline constexpr std::int16_t kFolderAverageSize = 22;

}  // namespace kinds

}  // namespace kalvo
