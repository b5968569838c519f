#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "database/sample/organization.h"

namespace kalvo::sample {

inline constexpr std::int64_t kMiB = 1024 * 1024;
inline constexpr std::int64_t kGiB = 1024 * kMiB;

// What several steps have to know alike: it follows from the organization alone.

struct Backup {
  Moment start;
  std::int32_t seconds = 0;
  bool succeeded = true;
};

// The backups of one store (1 information store, 2 directory store) of a server, the latest last. At most one
// of a server's two latest backups failed.
std::vector<Backup> BackupsOf(const Organization& organization, const Server& server, int type);

// The longest a backup of a server of this group may take, in seconds; 0 where the group has no such policy.
std::int32_t BackupPolicy(const ServerGroup& group);

struct DbFile {
  std::string_view component, kind, path;
  std::int64_t size = 0;  // bytes
};

struct FileSystem {
  std::string_view name;  // "D:"
  std::int64_t size = 0, free = 0;
  std::vector<DbFile> files;

  std::int64_t PercentUsed() const { return (size - free) * 100 / size; }
};

// The file systems of a server with the database files on them: their sizes, what else is there and the free
// space add up to the size of each.
std::vector<FileSystem> FileSystemsOf(const Organization& organization, const Server& server);

}  // namespace kalvo::sample
