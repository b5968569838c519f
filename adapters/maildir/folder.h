#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/maildir/files.h"
#include "adapters/maildir/folder_index.h"

namespace kalvo::maildir {

// What was done since the store was opened, for tests and measurements.
struct Work {
  std::int64_t messagesParsed = 0;
  std::int64_t bytesRead = 0;  // of messages and indexes
};

// The messages of a folder as they were at one moment, the last received first.
class Snapshot {
 public:
  Snapshot(std::shared_ptr<const std::string> bytes, std::vector<Entry> entries, std::deque<std::string> texts);

  const std::vector<Entry>& Entries() const { return entries_; }

 private:
  std::shared_ptr<const std::string> bytes_;  // of the index; entries refer to them
  std::deque<std::string> texts_;             // of what was read this time
  std::vector<Entry> entries_;
};

struct FolderTotals {
  std::int32_t count = 0;
  std::int64_t size = 0;
};

// One Maildir folder: "cur" and "new" of an open folder, with its index in a folder beside the store. An index that
// is missing, damaged or of another folder is made again; one that cannot be written costs time only.
class Folder {
 public:
  // `indexes` may be closed: then nothing is kept.
  Folder(File folder, const File& indexes, std::string indexName, std::string identity, Work& work);

  // The messages now. Only those that the index does not know are read. One that cannot be read has a row that says
  // so.
  std::shared_ptr<const Snapshot> Messages();

  // Count and size now, without reading a message.
  FolderTotals Totals();

  // The open file of a message, by its unique name; closed where it is gone (`ENOENT`) or cannot be read.
  File OpenMessage(std::string_view unique);

  // Moves the file of a message into a folder outside of all trees, under the name `as`; before each attempt
  // `announce` is told the file's name and whether it lies in "new". A file that is not a message is `Gone`.
  using Announce = std::function<void(const std::string& name, bool isNew)>;
  Moved MoveOut(std::string_view unique, const File& into, const std::string& as, const Announce& announce);

  // Moves a file in and gives it that name, in "new" or in "cur". Fails (`EEXIST`) where a message has the name.
  Moved MoveIn(const File& from, const std::string& name, const std::string& as, bool toNew);

  std::optional<std::int64_t> Created();   // seconds since 1970: when the folder was made, where its marker says
  std::optional<std::int64_t> Modified();  // when a message was last added, removed or renamed

 private:
  struct FoundFile {
    std::string name;
    bool isNew;
  };

  // What a listing finds; entries refer to the texts, which stay where they are.
  struct Gathered {
    std::vector<Entry> entries, unreadable;
    std::deque<std::string> texts;

    std::string_view Keep(std::string text) { return texts.emplace_back(std::move(text)); }
  };

  Stamp StampNow();
  std::vector<FoundFile> TakeKnown(const std::vector<Entry>& known, Gathered& found);
  bool ReadFile(const FoundFile& file, Gathered& found);
  void KeepIndex(const Stamp& stamp, bool settled, const std::vector<Entry>& entries);
  std::vector<FoundFile> Files();
  std::optional<FoundFile> Find(std::string_view unique);
  const File& ListOf(bool isNew) const { return isNew ? new_ : cur_; }
  std::shared_ptr<const std::string> IndexBytes();

  File folder_, cur_, new_;
  const File& indexes_;
  std::string indexName_, identity_;
  Work& work_;
};

// The part of a message file's name that stays when its flags change.
std::string_view UniquePart(std::string_view fileName);

// The size that a file's name tells (",S=1234"); nothing where it tells none.
std::optional<std::int64_t> SizeFromName(std::string_view fileName);

}  // namespace kalvo::maildir
