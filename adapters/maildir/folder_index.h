#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kalvo::maildir {

// One message of a folder as its index keeps it. Texts are cleaned and refer to the index's own bytes.
struct Entry {
  std::string_view unique;    // the file's name up to ":"; it stays when flags change
  std::string_view fileName;  // when the index was made; the file may have been renamed since
  bool hasAttachment = false;
  std::int64_t size = 0;
  std::optional<std::int64_t> sent;
  std::int64_t received = 0;
  std::string_view subject, sender;
};

// How a folder's two lists of files looked when they were read. As long as they look the same, and were settled,
// nothing was added, removed or renamed.
struct Stamp {
  std::int64_t curInode = 0, curTime = 0, newInode = 0, newTime = 0;  // times in nanoseconds
  bool operator==(const Stamp&) const = default;
};

// The summary at the front of an index.
struct IndexHead {
  Stamp stamp;
  bool settled = false;  // the stamp was old enough that a change in the same tick cannot hide
  std::int32_t count = 0;
  std::int64_t totalSize = 0;
};

// The bytes of an index. `identity` says whose it is; the whole is guarded by a check value.
std::string WriteIndex(std::string_view identity, const IndexHead& head, const std::vector<Entry>& entries);

// The head and the entries of an index; nothing for bytes that are not a whole, undamaged index of that identity.
std::optional<IndexHead> ReadIndexHead(std::string_view bytes, std::string_view identity);
std::optional<std::vector<Entry>> ReadIndexEntries(std::string_view bytes, std::string_view identity);

// The length of a head for an identity: reading that many bytes is enough for `ReadIndexHead`.
std::size_t IndexHeadLength(std::string_view identity);

}  // namespace kalvo::maildir
