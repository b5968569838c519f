#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace kalvo::test {

// Stands between the program and a mail server, so that something can happen to the server in the very middle of an
// answer of its own.
class MailRelay {
 public:
  explicit MailRelay(std::uint16_t server);
  ~MailRelay();
  MailRelay(const MailRelay&) = delete;
  MailRelay& operator=(const MailRelay&) = delete;

  std::uint16_t Port() const { return port_; }

  // When the server has said a text so many times: what it said up to there is passed on, the rest of those bytes
  // is not, and `step` is done, once.
  void At(std::string_view text, int times, std::function<void()> step);

  // Says this to every client in the server's stead, those that are there and those that come, until it is empty.
  void SayInstead(std::string bytes);

  // Whether the step has been done.
  bool Happened() const { return happened_; }

 private:
  struct Pair {
    int client, server;
  };

  void Serve();
  bool Pass(const Pair& pair, bool fromServer);
  bool PassAnswer(const Pair& pair, std::string_view bytes);
  void Accept();
  std::string Instead();

  const std::uint16_t server_;
  int listener_;
  std::uint16_t port_ = 0;
  std::list<Pair> pairs_;
  std::mutex lock_;
  std::string text_, instead_;
  int left_ = 0;
  std::function<void()> step_;
  std::atomic<bool> stop_{false}, happened_{false};
  std::thread thread_;
};

}  // namespace kalvo::test
