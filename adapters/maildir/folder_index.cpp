#include "adapters/maildir/folder_index.h"

#include <cstring>
#include <type_traits>

namespace kalvo::maildir {

namespace {

// Index files are for the machine that wrote them; another byte order makes a damaged one.
constexpr std::string_view kMagic = "KALVOIX2";
constexpr std::uint8_t kHasAttachment = 2, kHasSent = 4;
constexpr std::size_t kCheckBytes = 8;

std::uint64_t Mixed(std::uint64_t sum, std::uint64_t word) {
  sum = (sum ^ word) * 0x9FB21C651E98DF25;
  return sum ^ (sum >> 32);
}

// Finds damage, not forgery: whoever may write here may write the messages as well.
std::uint64_t CheckOf(std::string_view bytes) {
  std::uint64_t sum = 0x8ebc6af09c88c6e3 ^ bytes.size(), word = 0;
  while (bytes.size() >= 8) {
    std::memcpy(&word, bytes.data(), 8);
    sum = Mixed(sum, word);
    bytes.remove_prefix(8);
  }
  word = 0;
  std::memcpy(&word, bytes.data(), bytes.size());
  return Mixed(sum, word);
}

class Writer {
 public:
  template <typename T>
  void Put(T number) {
    static_assert(std::is_integral_v<T>);
    out_.append(reinterpret_cast<const char*>(&number), sizeof number);
  }
  void Put(std::string_view text) {
    Put(static_cast<std::uint32_t>(text.size()));
    out_ += text;
  }
  void Close() { Put(CheckOf(out_)); }
  std::string& Out() { return out_; }

 private:
  std::string out_;
};

// Takes from the front; anything that is not there makes it fail for good.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : left_(bytes) {}

  template <typename T>
  T Number() {
    T number{};
    const std::string_view bytes = Bytes(sizeof number);
    if (good_) std::memcpy(&number, bytes.data(), sizeof number);
    return number;
  }
  std::string_view Text() { return Bytes(Number<std::uint32_t>()); }
  std::string_view Bytes(std::size_t count) {
    if (!good_ || count > left_.size()) return good_ = false, std::string_view();
    const std::string_view bytes = left_.substr(0, count);
    left_.remove_prefix(count);
    return bytes;
  }
  bool Good() const { return good_; }
  bool AtEnd() const { return left_.empty(); }

 private:
  std::string_view left_;
  bool good_ = true;
};

// The head has a check value of its own, so that a folder's totals are read without its entries.
std::string HeadBytes(std::string_view identity, const IndexHead& head) {
  Writer writer;
  writer.Out() += kMagic;
  writer.Put(identity);
  for (const std::int64_t part :
       {head.stamp.curInode, head.stamp.curTime, head.stamp.newInode, head.stamp.newTime, head.totalSize}) {
    writer.Put(part);
  }
  writer.Put(head.count);
  writer.Put(static_cast<std::uint8_t>(head.settled));
  writer.Close();
  return std::move(writer.Out());
}

Entry ReadEntry(Reader& reader) {
  Entry entry;
  const auto marks = reader.Number<std::uint8_t>();
  entry.hasAttachment = (marks & kHasAttachment) != 0;
  entry.size = reader.Number<std::int64_t>();
  const auto sent = reader.Number<std::int64_t>();
  if (marks & kHasSent) entry.sent = sent;
  entry.received = reader.Number<std::int64_t>();
  entry.unique = reader.Text();
  entry.fileName = reader.Text();
  entry.subject = reader.Text();
  entry.sender = reader.Text();
  return entry;
}

}  // namespace

std::size_t IndexHeadLength(std::string_view identity) { return HeadBytes(identity, {}).size(); }

std::string WriteIndex(std::string_view identity, const IndexHead& head, const std::vector<Entry>& entries) {
  Writer writer;
  writer.Out() = HeadBytes(identity, head);
  for (const Entry& entry : entries) {
    writer.Put(static_cast<std::uint8_t>((entry.hasAttachment ? kHasAttachment : 0) | (entry.sent ? kHasSent : 0)));
    writer.Put(entry.size);
    writer.Put(entry.sent.value_or(0));
    writer.Put(entry.received);
    for (const std::string_view text : {entry.unique, entry.fileName, entry.subject, entry.sender}) writer.Put(text);
  }
  writer.Close();
  return std::move(writer.Out());
}

std::optional<IndexHead> ReadIndexHead(std::string_view bytes, std::string_view identity) {
  const std::size_t length = IndexHeadLength(identity);
  if (bytes.size() < length) return std::nullopt;
  Reader reader(bytes.substr(0, length));
  const std::string_view magic = reader.Bytes(kMagic.size());
  const std::string_view owner = reader.Text();
  IndexHead head;
  for (std::int64_t* part :
       {&head.stamp.curInode, &head.stamp.curTime, &head.stamp.newInode, &head.stamp.newTime, &head.totalSize}) {
    *part = reader.Number<std::int64_t>();
  }
  head.count = reader.Number<std::int32_t>();
  head.settled = reader.Number<std::uint8_t>() != 0;
  const auto check = reader.Number<std::uint64_t>();
  const bool whole = reader.Good() && magic == kMagic && owner == identity && head.count >= 0 &&
                     check == CheckOf(bytes.substr(0, length - kCheckBytes));
  return whole ? std::optional(head) : std::nullopt;
}

std::optional<std::vector<Entry>> ReadIndexEntries(std::string_view bytes, std::string_view identity) {
  const auto head = ReadIndexHead(bytes, identity);
  const std::size_t start = IndexHeadLength(identity);
  if (!head || bytes.size() < start + kCheckBytes) return std::nullopt;
  const std::string_view guarded = bytes.substr(0, bytes.size() - kCheckBytes);
  if (Reader(bytes.substr(guarded.size())).Number<std::uint64_t>() != CheckOf(guarded)) return std::nullopt;
  Reader reader(guarded.substr(start));
  std::vector<Entry> entries;
  while (reader.Good() && !reader.AtEnd()) entries.push_back(ReadEntry(reader));
  if (!reader.Good() || entries.size() != static_cast<std::size_t>(head->count)) return std::nullopt;
  return entries;
}

}  // namespace kalvo::maildir
