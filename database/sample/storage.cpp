#include "database/sample/storage.h"

#include <algorithm>

#include "database/sample/sample_steps.h"
#include "kalvo/platform/append.h"

namespace kalvo::sample {
namespace {

constexpr int kDaysOfFiles = 9;

// A stream of numbers for one server.
Random RandomFor(const Organization& organization, std::string_view step, const Server& server) {
  return organization.RandomFor(Built([&](std::string& out) { Append(out, step, server.id); }));
}

// The smallest disk that is sold and holds the content with the share of it that shall be used.
std::int64_t DiskFor(std::int64_t content, std::int64_t percent) {
  static constexpr std::int64_t kDisks[] = {4 * kGiB,  9 * kGiB,   18 * kGiB, 36 * kGiB,
                                            72 * kGiB, 144 * kGiB, 288 * kGiB};
  const std::int64_t wanted = content * 100 / percent;
  for (const std::int64_t disk : kDisks) {
    if (disk >= wanted) return disk;
  }
  return (wanted / kGiB + 1) * kGiB;
}

FileSystem MakeFileSystem(std::string_view name, std::vector<DbFile> files, Random& random) {
  FileSystem system;
  system.name = name;
  system.files = std::move(files);
  std::int64_t content = random.Between(200, 2'600) * kMiB + random.Below(kMiB);
  for (const DbFile& file : system.files) content += file.size;
  system.size = DiskFor(content, random.Between(45, 99));
  system.free = system.size - content;
  return system;
}

}  // namespace

std::vector<Backup> BackupsOf(const Organization& organization, const Server& server, int type) {
  Random random = RandomFor(organization, type == 1 ? "information store" : "directory store", server);
  const int nights = organization.size == SampleSize::Large ? 3 : 10;
  // The latest backups of every sixth server failed: of one store or the other, never of both.
  const bool failing = server.id % 6 == 2 && (server.id / 6 % 2 == 0) == (type == 1);
  const bool slow = type == 1 && server.id % 5 == 1;
  std::vector<Backup> backups;
  for (int night = nights - 1; night >= 0; --night) {
    Backup backup;
    backup.start = server.lastQuickScan.Before(night, (type == 1 ? 14'000 : 5'000) + server.id * 3 + random.Below(3));
    backup.seconds = static_cast<std::int32_t>(type == 1 ? random.Between(2'900, 6'800) : random.Between(60, 480));
    if (slow) backup.seconds += static_cast<std::int32_t>(14'400 + server.id * 61);
    const bool failed = night == 0 ? failing : random.OneIn(15);
    backup.succeeded = !failed;
    if (failed) backup.seconds /= 3;
    backups.push_back(backup);
  }
  return backups;
}

std::int32_t BackupPolicy(const ServerGroup& group) {
  static constexpr std::int32_t kHours[] = {4, 2, 5, 0, 0};
  return kHours[static_cast<std::size_t>(group.id - 1)] * 3'600;
}

std::vector<FileSystem> FileSystemsOf(const Organization& organization, const Server& server) {
  Random random = RandomFor(organization, "disks", server);
  const auto grown = [&](std::int64_t content) {
    return (content / 10 * random.Between(11, 13) + 2 * kMiB) / 4'096 * 4'096;
  };
  std::vector<FileSystem> systems;
  systems.push_back(MakeFileSystem(
      "C:", {{"Directory", "Directory database", "C:\\EXCHSRVR\\DSADATA", grown(4 * kMiB + random.Below(30 * kMiB))}},
      random));
  systems.push_back(MakeFileSystem(
      "D:",
      {{"Private Information Store", "Mailbox database", "D:\\EXCHSRVR\\MDBDATA", grown(server.space)},
       {"Public Information Store", "Public folder database", "D:\\EXCHSRVR\\MDBDATA", grown(server.publicSpace)}},
      random));
  if (server.id % 3 != 0) {
    systems.push_back(MakeFileSystem(
        "E:", {{"Transaction Logs", "Log files", "E:\\EXCHSRVR\\LOGS", random.Between(4, 300) * 5 * kMiB}}, random));
  }
  return systems;
}

void WriteStorage(SampleRun& run) {
  struct Placed {
    const Server* server;
    std::int32_t partition;
    DbFile file;
  };
  std::vector<Placed> files;
  std::int32_t partitions = 0;
  run.rows.Table("EXDB_PARTITION", {"PartitionId", "ServerId", "Name", "Size", "FreeSpace"});
  for (const Server& server : run.organization.servers) {
    if (!server.scanned) continue;
    for (const FileSystem& system : FileSystemsOf(run.organization, server)) {
      run.rows.Add(++partitions, server.id, system.name, system.size, system.free);
      for (const DbFile& file : system.files) files.push_back({&server, partitions, file});
    }
  }
  run.rows.Table("EXDB_DBFILE",
                 {"DbFileId", "ServerId", "PartitionId", "DbFileString", "FileName", "SortDirPath", "LastQuickScan"});
  std::int32_t id = 0;
  for (const Placed& placed : files) {
    run.rows.Add(++id, placed.server->id, placed.partition, placed.file.component, placed.file.kind, placed.file.path,
                 placed.server->lastQuickScan);
  }
  run.rows.Table("EXDB_DBFILEHISTORY", {"DbFileHistoryId", "DbFileId", "FileSize", "FreeSpace"});
  std::int32_t record = 0;
  for (int day = kDaysOfFiles - 1; day >= 0; --day) {
    for (std::size_t i = 0; i < files.size(); ++i) {
      const std::int64_t size = (files[i].file.size - files[i].file.size * day / 120) / 4'096 * 4'096;
      run.rows.Add(++record, i + 1, size, size / 4'096 * 37 / 1'000 * 4'096);
    }
  }
}

}  // namespace kalvo::sample
