#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace kalvo::test {

// A program and how it is run. Its output goes to the end of the log file.
struct Command {
  std::vector<std::string> arguments;  // the program's path first
  std::filesystem::path log;
  std::string user;   // to run as when this process is root; empty for the same user
  std::string input;  // for its standard input
};

// Runs a program to its end. Throws, with the log, when it does not end well.
void Run(const Command& command);

// A server that runs as long as the object lives, and dies with this process whatever becomes of it.
class Server {
 public:
  Server(const Command& command, int stopSignal);
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  // Waits until something listens on the loopback port. Throws, with the log, when the server has ended or does
  // not listen within half a minute.
  void WaitForPort(int port);

 private:
  const std::filesystem::path log_;
  const int stopSignal_;
  pid_t process_;
};

// A port of the loopback address that nobody listens on.
int FreePort();

}  // namespace kalvo::test
