#include "host/web/login/waiting_room.h"

#include "host/web/login/kept_folder.h"

namespace kalvo::web::login {

WaitingRoom::WaitingRoom(std::filesystem::path folder, int seats) : folder_(std::move(folder)), seats_(seats) {
  MakePrivateFolder("sessions", folder_);
}

std::unique_ptr<WaitingRoom::Seat> WaitingRoom::Enter(const std::string& session) const {
  auto place = FileLock::Try(folder_ / session);
  if (!place) return nullptr;
  place->RemoveAtEnd();
  for (int i = 0; i < seats_; ++i) {
    if (auto seat = FileLock::Try(folder_ / ("seat-" + std::to_string(i)))) {
      return std::make_unique<Seat>(std::move(*place), std::move(*seat));
    }
  }
  return nullptr;
}

}  // namespace kalvo::web::login
