// Asks for one page over and over, on many connections at once, each with a session of its own.
//
//   load PORT PATH CONNECTIONS SECONDS [COOKIES]      COOKIES: a file with a line "name=value" for each connection
//
// Prints {"pages", "failures", "seconds", "p50_ms", "p99_ms", "bytes"}. An answer other than 200 is a failure.

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

int Connect(int port) {
  const int connection = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("nobody listens");
  }
  const int on = 1;
  setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  return connection;
}

// One connection, which waits for one answer at a time.
class Visitor {
 public:
  Visitor(int port, std::string request) : port_(port), request_(std::move(request)), connection_(Connect(port)) {
    Ask();
  }
  ~Visitor() { close(connection_); }
  Visitor(const Visitor&) = delete;
  Visitor& operator=(const Visitor&) = delete;

  int Connection() const { return connection_; }

  // Reads what has come; true when the answer is whole.
  bool Read() {
    char piece[64 << 10];
    const ssize_t size = read(connection_, piece, sizeof piece);
    if (size <= 0) {
      isClosed_ = true;
      return true;
    }
    answer_.append(piece, static_cast<std::size_t>(size));
    return IsWhole();
  }

  bool Failed() const { return !answer_.starts_with("HTTP/1.1 200 ") || isClosed_; }
  std::size_t Size() const { return answer_.size(); }
  double Milliseconds() const { return std::chrono::duration<double, std::milli>(Clock::now() - asked_).count(); }

  void Ask() {
    if (isClosed_ || answer_.find("Connection: close") < answer_.find("\r\n\r\n")) {
      close(connection_);
      connection_ = Connect(port_);
    }
    isClosed_ = false;
    answer_.clear();
    asked_ = Clock::now();
    if (write(connection_, request_.data(), request_.size()) != static_cast<ssize_t>(request_.size())) isClosed_ = true;
  }

 private:
  bool IsWhole() const {
    const std::size_t head = answer_.find("\r\n\r\n");
    if (head == std::string::npos) return false;
    const std::size_t length = answer_.find("Content-Length: ");
    if (length > head) return answer_.ends_with("\r\n0\r\n\r\n");
    return answer_.size() >= head + 4 + std::stoul(answer_.substr(length + 16, 12));
  }

  int port_;
  std::string request_;
  int connection_;
  std::string answer_;
  bool isClosed_ = false;
  Clock::time_point asked_;
};

struct Tally {
  std::vector<double> times;
  std::size_t failures = 0, bytes = 0;
  double seconds = 0;

  void Print() {
    std::sort(times.begin(), times.end());
    const auto part = [&](double share) {
      return times.empty() ? 0 : times[static_cast<std::size_t>(share * static_cast<double>(times.size() - 1))];
    };
    std::printf(
        "{\"pages\": %zu, \"failures\": %zu, \"seconds\": %.3f, \"p50_ms\": %.2f, \"p99_ms\": %.2f, \"bytes\": %zu}\n",
        times.size(), failures, seconds, part(0.5), part(0.99), bytes);
  }
};

Tally Visit(std::vector<std::unique_ptr<Visitor>>& visitors, double seconds) {
  std::vector<pollfd> waiting(visitors.size());
  Tally tally;
  const auto begin = Clock::now();
  const auto passed = [&] { return std::chrono::duration<double>(Clock::now() - begin).count(); };
  while ((tally.seconds = passed()) < seconds) {
    for (std::size_t i = 0; i < visitors.size(); ++i) waiting[i] = {visitors[i]->Connection(), POLLIN, 0};
    if (poll(waiting.data(), waiting.size(), 1000) <= 0) continue;
    for (std::size_t i = 0; i < visitors.size(); ++i) {
      if (waiting[i].revents == 0 || !visitors[i]->Read()) continue;
      if (visitors[i]->Failed()) {
        ++tally.failures;
      } else {
        tally.times.push_back(visitors[i]->Milliseconds());
        tally.bytes = visitors[i]->Size();
      }
      visitors[i]->Ask();
    }
  }
  return tally;
}

std::vector<std::string> ReadLines(const char* file) {
  std::vector<std::string> lines;
  std::ifstream stream(file);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

void Run(int port, const std::string& path, std::size_t connections, double seconds,
         const std::vector<std::string>& cookies) {
  if (!cookies.empty() && cookies.size() < connections) throw std::runtime_error("too few cookies");
  std::vector<std::unique_ptr<Visitor>> visitors;
  for (std::size_t i = 0; i < connections; ++i) {
    const std::string cookie = cookies.empty() ? "" : "Cookie: " + cookies[i] + "\r\n";
    visitors.push_back(std::make_unique<Visitor>(
        port, "GET " + path + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) + "\r\n" + cookie + "\r\n"));
  }
  Visit(visitors, seconds).Print();
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 5) {
    std::fprintf(stderr, "usage: load PORT PATH CONNECTIONS SECONDS [COOKIES]\n");
    return 2;
  }
  try {
    Run(std::stoi(arguments[1]), arguments[2], std::stoul(arguments[3]), std::stod(arguments[4]),
        count > 5 ? ReadLines(arguments[5]) : std::vector<std::string>());
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "load: %s\n", error.what());
    return 1;
  }
}
