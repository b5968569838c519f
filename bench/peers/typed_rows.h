#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The rows of the two reports that everybody is measured by, in the types that their cells need.
namespace kalvo::peers {

// Texts that stay where they are until the pool goes. 16 bytes behind each may be read.
class TextPool {
 public:
  std::string_view Keep(std::string_view text) {
    if (text.size() > left_) Grow(text.size());
    char* kept = next_;
    std::memcpy(kept, text.data(), text.size());
    next_ += text.size();
    left_ -= text.size();
    return {kept, text.size()};
  }

 private:
  static constexpr std::size_t kBlock = 256 << 10, kReadable = 16;

  void Grow(std::size_t size) {
    left_ = size > kBlock ? size : kBlock;
    next_ = blocks_.emplace_back(std::make_unique<char[]>(left_ + kReadable)).get();
  }

  std::vector<std::unique_ptr<char[]>> blocks_;
  char* next_ = nullptr;
  std::size_t left_ = 0;
};

struct Moment {
  std::uint16_t year = 0;  // 0: there is none
  std::uint8_t month = 0, day = 0, hour = 0, minute = 0, second = 0;
};

struct Alert {
  std::string_view resource, computer, kind, group, folder, what, oldBefore, threshold, found;
  Moment time;
  int code = 0;
  bool isMissing = false;
};

struct Server {
  std::string_view domain, computer;
  std::int64_t mailboxes = 0, mailboxBytes = 0, folders = 0, folderBytes = 0;
  bool isMissing = false;
};

template <typename Row>
struct Report {
  std::vector<Row> rows;
  Row totals;
  std::int64_t count = 0;  // rows of the report; `rows` may be a window of them
  std::int64_t first = 1;  // what rows.front() is the number of
  TextPool texts;
};

// Which rows to fetch: all of them, or those of one page with the count and the totals beside.
struct Wanted {
  bool all = true;
  std::int64_t first = 1, size = 50;
  std::string_view order;  // "" is the report's own
};

class Reader {
 public:
  explicit Reader(const std::string& file);
  ~Reader();
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  void Load(Report<Alert>& report, const Wanted& wanted = {});
  void Load(Report<Server>& report, const Wanted& wanted = {});

 private:
  template <typename OnRow>
  void Each(const std::string& sql, OnRow onRow);
  void Execute(const char* sql);
  std::int64_t Number(const std::string& sql);

  sqlite3* connection_ = nullptr;
};

}  // namespace kalvo::peers
