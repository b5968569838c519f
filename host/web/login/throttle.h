#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string_view>

namespace kalvo::web::login {

// Slows down who guesses passwords: after some free attempts each one has to wait longer than the one before. Whoever
// signed in before, from the same browser or the same address, is counted apart, so that strangers' guesses hold
// nobody up for whom the place is known. Counted in files of a private folder, for all processes that serve the site.
class Throttle {
 public:
  using Clock = std::function<std::int64_t()>;  // seconds since 1970

  // Makes the folder. Fails with SettingError.
  explicit Throttle(std::filesystem::path folder);
  Throttle(std::filesystem::path folder, Clock clock);

  // An attempt to sign in begins, from a browser that shows this device ("" or any text). 0, and it counts as failed
  // until `Succeeded` says otherwise; or the seconds after which an attempt is heard again, and it does not count.
  // Throws NotKept when it cannot be counted.
  std::int64_t Begin(std::string_view account, std::string_view address, std::string_view device = "");

  // Forgets the failed attempts of the account from there.
  void Succeeded(std::string_view account, std::string_view address, std::string_view device = "");

  // From now on the account is known on this device and at this address, for some weeks.
  void Remember(std::string_view account, std::string_view address, std::string_view device);

 private:
  struct Counted;
  Counted CountedFor(std::string_view account, std::string_view address, std::string_view device) const;
  bool IsKnown(std::string_view account, std::string_view place, std::int64_t now) const;
  std::filesystem::path KnownPath(std::string_view account, std::string_view place) const;
  void SweepNowAndThen(std::int64_t now) const;

  std::filesystem::path folder_;
  Clock clock_;
};

}  // namespace kalvo::web::login
