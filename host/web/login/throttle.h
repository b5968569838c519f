#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace kalvo::web::login {

// Slows down who guesses passwords: after some free attempts each one has to wait longer than the one before.
// Counted in files of a private folder, for all processes that serve the site.
class Throttle {
 public:
  using Clock = std::function<std::int64_t()>;  // seconds since 1970

  // Makes the folder. Fails with SettingError.
  explicit Throttle(std::filesystem::path folder);
  Throttle(std::filesystem::path folder, Clock clock);

  // An attempt to sign in begins. 0, and it counts as failed until `Succeeded` says otherwise; or the seconds after
  // which an attempt is heard again, and it does not count.
  std::int64_t Begin(std::string_view account, std::string_view address);

  // Forgets the failed attempts of the account.
  void Succeeded(std::string_view account, std::string_view address);

 private:
  std::filesystem::path folder_;
  Clock clock_;
};

}  // namespace kalvo::web::login
