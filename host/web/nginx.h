#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string>

namespace kalvo::web {

class Log;
class RunFolder;

// The nginx of a server, as a child process. It ends when its parent does, however that ends.
class Nginx {
 public:
  Nginx(std::string program, const RunFolder& run, const Log& log);

  // Starts it with the configuration in the run folder and waits until it listens. Fails with SettingError, with
  // nginx's own words.
  void Start();

  // Starts it again when it has died, though not at once twice.
  void Keep();

  // Another socket that its configuration names, or "" for none: one that a killed nginx left there would keep the
  // next one from starting.
  void Owns(std::filesystem::path socket) { socket_ = std::move(socket); }

  // It reads its configuration again; connections that are open stay.
  void Reload();
  void ReopenLog();

  // Puts a log that has become long aside, in the place of the one before: whatever floods it, it stays small.
  void BoundLog();

  // It closes its ears, finishes what it does, and goes.
  void Quit();
  void Kill();

  // Takes notice of a child process that ended. False when it was another.
  bool Ended(pid_t child, int status);
  bool Running() const { return process_ > 0; }

 private:
  void Fork();
  bool Listens() const;

  std::string program_;
  const RunFolder& run_;
  const Log& log_;
  std::filesystem::path socket_;
  pid_t process_ = 0;
  bool quitting_ = false;
  std::int64_t nextStart_ = 0;
};

}  // namespace kalvo::web
