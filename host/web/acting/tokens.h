#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace kalvo::web {

// Tokens for forms that act. Each is good once, for one session and one purpose, for an hour. Making one leaves
// nothing behind; one that was taken leaves an empty file until its hour is over, so that no process that shares the
// folder, now or after a new start, takes it again.
class Tokens {
 public:
  static constexpr std::int64_t kLifetime = 60 * 60;  // seconds

  // Makes the folder and its secret where they are missing. Fails with SettingError.
  explicit Tokens(std::filesystem::path folder);

  // `now` is in seconds since 1970.
  std::string New(std::string_view session, std::string_view purpose, std::int64_t now) const;

  // Takes a token; false when it is not of this session and purpose, is too old, or was taken before. Fails with
  // SettingError when that cannot be kept; it was not taken then.
  bool Take(std::string_view session, std::string_view purpose, std::string_view token, std::int64_t now) const;

 private:
  std::string CodeOf(std::string_view session, std::string_view purpose, std::string_view head) const;
  void Sweep(std::int64_t now) const;

  std::filesystem::path folder_;
  std::array<unsigned char, 32> secret_{};
};

}  // namespace kalvo::web
