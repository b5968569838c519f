#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "host/web/login/file_lock.h"

namespace kalvo::web::login {

// Where a request waits for a session that another page holds. A worker that waits serves nobody, so there are few
// seats for all, and one for each session. Seats are files of a private folder, shared by all processes that serve
// the site; whose process dies leaves its seat.
class WaitingRoom {
 public:
  // Makes the folder. Fails with SettingError.
  WaitingRoom(std::filesystem::path folder, int seats);

  // A seat, until it goes.
  class Seat {
   public:
    Seat(FileLock session, FileLock seat) : session_(std::move(session)), seat_(std::move(seat)) {}

   private:
    FileLock session_, seat_;
  };

  // Null when somebody waits for that session already, or every seat is taken. `session` is a file name.
  std::unique_ptr<Seat> Enter(const std::string& session) const;

 private:
  std::filesystem::path folder_;
  int seats_;
};

}  // namespace kalvo::web::login
