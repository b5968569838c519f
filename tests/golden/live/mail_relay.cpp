#include "golden/live/mail_relay.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>
#include <vector>

namespace kalvo::test {
namespace {

constexpr int kTick = 20;  // milliseconds between two looks whether to stop

sockaddr_in Here(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

bool SendAll(int to, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto count = send(to, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace

MailRelay::MailRelay(std::uint16_t server)
    : server_(server), listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  auto address = Here(0);
  socklen_t size = sizeof address;
  if (bind(listener_, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener_, 8) != 0 ||
      getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    throw std::runtime_error("no port to listen on");
  }
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] { Serve(); });
}

MailRelay::~MailRelay() {
  stop_ = true;
  thread_.join();
  close(listener_);
}

void MailRelay::At(std::string_view text, int times, std::function<void()> step) {
  const std::lock_guard guard(lock_);
  text_ = text;
  left_ = times;
  step_ = std::move(step);
  happened_ = false;
}

void MailRelay::SayInstead(std::string bytes) {
  const std::lock_guard guard(lock_);
  instead_ = std::move(bytes);
}

std::string MailRelay::Instead() {
  const std::lock_guard guard(lock_);
  return instead_;
}

void MailRelay::Accept() {
  const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
  if (client < 0) return;
  const int server = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const auto address = Here(server_);
  const bool reached = connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  const std::string instead = Instead();
  if (reached && (instead.empty() || SendAll(client, instead))) {
    pairs_.push_back({client, server});
  } else {
    close(client);
    close(server);
  }
}

bool MailRelay::PassAnswer(const Pair& pair, std::string_view bytes) {
  if (const std::string instead = Instead(); !instead.empty()) return SendAll(pair.client, instead);
  std::function<void()> step;
  {
    const std::lock_guard guard(lock_);
    for (std::size_t at = 0; left_ > 0 && (at = bytes.find(text_, at)) != bytes.npos;) {
      at += text_.size();
      if (--left_ > 0) continue;
      bytes = bytes.substr(0, at);
      step = std::exchange(step_, nullptr);
    }
  }
  if (!SendAll(pair.client, bytes)) return false;
  if (!step) return true;
  step();
  happened_ = true;
  const std::string instead = Instead();
  return instead.empty() || SendAll(pair.client, instead);
}

bool MailRelay::Pass(const Pair& pair, bool fromServer) {
  char bytes[65536];
  const auto count = recv(fromServer ? pair.server : pair.client, bytes, sizeof bytes, 0);
  if (count <= 0) return false;
  const std::string_view got(bytes, static_cast<std::size_t>(count));
  return fromServer ? PassAnswer(pair, got) : SendAll(pair.server, got);
}

void MailRelay::Serve() {
  while (!stop_) {
    std::vector<pollfd> waited = {{listener_, POLLIN, 0}};
    for (const Pair& pair : pairs_) {
      waited.push_back({pair.client, POLLIN, 0});
      waited.push_back({pair.server, POLLIN, 0});
    }
    if (poll(waited.data(), waited.size(), kTick) <= 0) continue;
    std::size_t i = 1;
    for (auto pair = pairs_.begin(); pair != pairs_.end(); i += 2) {
      const bool goesOn = (!waited[i].revents || Pass(*pair, false)) && (!waited[i + 1].revents || Pass(*pair, true));
      if (!goesOn) {
        close(pair->client);
        close(pair->server);
      }
      pair = goesOn ? std::next(pair) : pairs_.erase(pair);
    }
    if (waited[0].revents) Accept();
  }
  for (const Pair& pair : pairs_) {
    close(pair.client);
    close(pair.server);
  }
}

}  // namespace kalvo::test
