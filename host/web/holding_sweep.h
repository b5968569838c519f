#pragma once

#include <cstdint>
#include <filesystem>

namespace kalvo::mail {
class MailStore;
}

namespace kalvo::web {

class Log;

// Ends the holding of deleted messages that are past their time. Every worker asks when it has nothing else to do; of
// all of them one sweeps, once an hour.
class HoldingSweep {
 public:
  // `run` is the folder that the workers share; the store may be null.
  HoldingSweep(const std::filesystem::path& run, mail::MailStore* store, int days, const Log& log);

  // Whether it is time. Cheap; another worker may be faster all the same.
  bool IsDue() const;

  // Sweeps where it is time and nobody else does. What goes wrong is told to the log and tried again an hour later.
  void Run();

 private:
  std::filesystem::path mark_;  // changed last when somebody swept last
  mail::MailStore* store_;
  std::int64_t heldFor_;  // seconds
  const Log& log_;
};

}  // namespace kalvo::web
