#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kalvo::attack {

// What a request sends. The path is sent as it is, whatever dots and slashes it holds.
struct Question {
  std::string method = "GET";
  std::string path;                  // with its query
  std::vector<std::string> headers;  // "Name: value"
};

struct Answer {
  int status = 0;
  std::vector<std::pair<std::string, std::string>> headers;  // names in lower case, in order
  std::string body;                                          // its first 4 MiB

  // The values of a header, joined by ", "; "" when there is none. The name is in lower case.
  std::string Header(std::string_view name) const;
};

// Where a system is: "https://console.example:8443".
struct Origin {
  std::string text;
  bool encrypted = false;
};

// Takes "http://HOST", "https://HOST:PORT" and the same with the console's own path behind it; nothing for any other
// text.
std::optional<Origin> ParseOrigin(std::string_view url);

// Asks one system, one request after another and at most ten in a second. Follows no redirect and keeps no cookie.
class Client {
 public:
  explicit Client(Origin origin);
  ~Client();
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  // Fails with std::runtime_error, which says why, when there is no answer.
  Answer Ask(const Question& question);

  const Origin& GetOrigin() const { return origin_; }

 private:
  struct Handle;
  void AwaitTurn();

  Origin origin_;
  std::unique_ptr<Handle> handle_;
  std::optional<std::chrono::steady_clock::time_point> last_;
};

}  // namespace kalvo::attack
