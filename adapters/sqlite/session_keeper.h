#pragma once

#include <sys/types.h>

#include <memory>
#include <mutex>
#include <string>

#include "adapters/sqlite/connection.h"

namespace kalvo::sqlite {

// Keeps one connection to a file open between pages, with what SQLite knows of the file: opening it again means reading
// its schema and the pages of its tables again. Whoever holds a session holds it alone; a second one that is asked for
// meanwhile is opened, and closed when it is let go. Safe to use from several threads.
class SessionKeeper : public std::enable_shared_from_this<SessionKeeper> {
 public:
  SessionKeeper(std::string file, Options options, const Locale& locale);

  // The kept session, when the file is still the one that it opened and can be read, or a new one, which fails as
  // opening does.
  std::shared_ptr<Session> Take();

 private:
  // Which file a path names.
  struct Identity {
    dev_t device = 0;
    ino_t inode = 0;
    bool operator==(const Identity&) const = default;
  };
  struct Kept {
    std::unique_ptr<Session> session;
    Identity opened;
    pid_t process = 0;
  };

  Identity Now() const;
  std::unique_ptr<Session> TakeKept(const Identity& now);
  std::shared_ptr<Session> Lent(std::unique_ptr<Session> session, const Identity& opened);
  void GiveBack(std::unique_ptr<Session> session, const Identity& opened);

  const std::string file_;
  const Options options_;
  const Locale& locale_;
  std::mutex mutex_;
  Kept kept_;
};

}  // namespace kalvo::sqlite
