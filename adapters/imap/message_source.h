#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "adapters/imap/connection_pool.h"
#include "adapters/imap/folder_cache.h"
#include "adapters/mail/errors.h"
#include "adapters/mail/mail_store.h"

namespace kalvo::imap {

// Where a folder is.
struct Place {
  std::string server;
  std::string user;
  std::string folder;
};

// The messages of a folder as they were when it was listed. A row is fetched when it is asked for, together with
// those that are shown after it.
class ImapMessages : public mail::MessageSource {
 public:
  ImapMessages(std::shared_ptr<ConnectionPool> pool, Place place, std::shared_ptr<KnownFolder> folder);

  ~ImapMessages() override;

  std::int32_t Count() override { return static_cast<std::int32_t>(messages_->size()); }
  mail::MessageRow Row(std::span<const std::int32_t> upcoming) override;
  std::int64_t TotalSize() override { return folder_->TotalSize(); }
  std::optional<std::vector<std::int32_t>> Order(std::span<const mail::MessageSort> keys) override;

 private:
  const Summary& At(std::int32_t message) const { return (*messages_)[static_cast<std::size_t>(message)]; }
  void FetchWindow(std::span<const std::int32_t> upcoming);
  std::vector<std::int32_t> OwnOrder(std::span<const mail::MessageSort> keys) const;
  void SortHere(std::vector<std::int32_t>& order, std::span<const mail::MessageSort> keys) const;
  std::optional<std::vector<std::int32_t>> ServerOrder(std::span<const mail::MessageSort> keys);
  std::vector<std::int32_t> Merged(std::span<const std::uint32_t> backwards, std::span<const std::uint32_t> undated,
                                   std::span<const mail::MessageSort> keys);
  std::optional<std::vector<std::uint32_t>> Undated(std::vector<std::uint32_t> candidates);
  std::vector<std::int32_t> TextOrder(std::span<const mail::MessageSort> keys);
  void ReadTexts();
  std::vector<Fetched> Fetch(std::span<const std::uint32_t> uids, Connection::Parts parts);
  void FetchReadable(std::span<const std::uint32_t> uids, Connection::Parts parts, std::vector<Fetched>& fetched,
                     int& unreadable);
  void FetchDamaged(std::span<const std::uint32_t> uid, std::vector<Fetched>& fetched);

  // Runs a step on the folder, which is open then. All steps of a listing share the time of one.
  template <typename Step>
  auto Ask(Step&& step);

  std::shared_ptr<ConnectionPool> pool_;
  Place place_;
  std::shared_ptr<KnownFolder> folder_;
  std::shared_ptr<const std::vector<Summary>> messages_;
  std::string key_;
  std::int32_t expected_ = -1;  // the message after the last window
  std::size_t window_ = 0;
  std::chrono::milliseconds timeLeft_;
  std::vector<std::uint32_t> doubtful_;  // unreadable, perhaps for the server's sake
};

template <typename Step>
auto ImapMessages::Ask(Step&& step) {
  struct Counting {
    std::chrono::milliseconds& left;
    Deadline::Clock::time_point begin = Deadline::Clock::now();
    ~Counting() { left -= std::chrono::ceil<std::chrono::milliseconds>(Deadline::Clock::now() - begin); }
  } const counting{timeLeft_};
  return pool_->With(place_.server, place_.user, Deadline(timeLeft_), [&](Connection& connection) {
    if (connection.Stay(place_.folder).uidValidity != folder_->state.uidValidity) {
      throw mail::NoSuchFolder("The folder was made again meanwhile.");
    }
    return step(connection);
  });
}

// "validity-uid", the key of a message in its folder.
std::string MessageKey(std::uint32_t uidValidity, std::uint32_t uid);

struct MessageNumber {
  std::uint32_t uidValidity = 0;
  std::uint32_t uid = 0;
};

// Nothing for any other text.
std::optional<MessageNumber> ReadMessageKey(std::string_view key);

}  // namespace kalvo::imap
