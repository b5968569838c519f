#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace kalvo::test {

// What a test's server says to one connection. Every wait ends when the client hangs up or the server is to stop.
class Talk {
 public:
  Talk(int socket, const std::atomic<bool>& stop) : socket_(socket), stop_(stop) {}

  bool Send(std::string_view text) const;  // false when the client is gone
  bool ReadLine(std::string& line);
  bool ReadBytes(std::size_t count, std::string& bytes);
  void Hang() const;   // until the client is gone
  void Close() const;  // hangs up

 private:
  int socket_;
  const std::atomic<bool>& stop_;
  std::string read_;
};

// A mail server with an inbox of three messages, and room for one that is held, that answers as the protocol has it,
// but for the commands that a test gives it other answers for: what no real server can be made to do. It serves one
// connection after another.
class FakeMailServer {
 public:
  // Answers one command; `tag` is the command's. Whatever it sends is all that is sent.
  using Answer = std::function<void(Talk& talk, const std::string& tag)>;

  FakeMailServer();
  ~FakeMailServer();

  // The answer to all commands that begin with this word ("UID FETCH", "EXAMINE"); nothing: as the protocol has it.
  void Misbehave(const std::string& command, Answer answer);
  void Behave() { Misbehave("", nullptr); }

  // Removes a message of the inbox, as an expunge does.
  void Remove(const std::string& uid);

  // The message that is held; "" for none.
  std::string Held() const;

  std::uint16_t Port() const { return port_; }
  int Connections() const { return connections_; }
  std::vector<std::string> Commands() const;

 private:
  void Serve();
  void ServeOne(int socket);
  void AnswerWell(Talk& talk, const std::string& tag, const std::string& command);
  void Append(Talk& talk, const std::string& tag, const std::string& command);
  std::string FetchAnswer(const std::string& command) const;

  int listener_;
  std::uint16_t port_ = 0;
  std::atomic<bool> stop_{false};
  std::atomic<int> connections_{0};
  mutable std::mutex lock_;
  std::string misbehaving_;
  Answer answer_;
  std::vector<std::string> commands_;
  std::set<std::string> gone_;
  std::string held_;
  bool inHolding_ = false;  // which of the two folders is open
  std::thread thread_;
};

}  // namespace kalvo::test
