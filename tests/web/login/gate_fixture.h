#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "host/audit/reading.h"
#include "host/parts/setting_error.h"
#include "host/web/log.h"
#include "host/web/login/addresses.h"
#include "host/web/login/gate.h"
#include "host/web/login/password.h"
#include "support/full_disk.h"
#include "support/temporary_folder.h"

namespace kalvo::test {

using namespace web;
using namespace web::login;

inline constexpr const char* kPassword = "correct horse";

class Gates : public testing::Test {
 protected:
  static void SetUpTestSuite() { hash_ = HashPassword(kPassword); }

  static std::filesystem::path WithUsers(const std::filesystem::path& file) {
    UsersFile users(file);
    users.Put({"KALVO\\alice", true, false, hash_});
    users.Put({"KALVO\\bob", false, true, hash_});
    return file;
  }

  using Decision = std::variant<Admission, Answer>;

  host::PageRequest Asked(const std::string& page, const std::string& cookie = "") {
    host::PageRequest request;
    request.url = "/KalvoforExchange" + page;
    request.cookies = cookie;
    request.serverVariables = {{"REMOTE_ADDR", "10.0.0.1"}, {"HTTP_HOST", "console:8080"}, {"HTTP_COOKIE", cookie}};
    return request;
  }

  Decision SignIn(const std::string& name, const std::string& password, const std::string& more = "",
                  const std::string& cookie = "") {
    host::PageRequest request = Asked("/SignIn.asp", cookie);
    request.method = "POST";
    request.form = "Name=" + name + "&Password=" + password + more;
    return gate_.Admit("/SignIn.asp", request);
  }

  static std::string HeaderOf(const Decision& decision, std::string_view name) {
    for (const auto& [key, value] : std::get<Answer>(decision).head.headers) {
      if (key == name) return value;
    }
    return "";
  }

  // The cookie that the browser sends from then on.
  static std::string CookieOf(const Decision& decision) {
    const std::string cookie = HeaderOf(decision, "Set-Cookie");
    return cookie.substr(0, cookie.find(';'));
  }

  std::string CookieOfBob() { return CookieOf(SignIn("bob", "correct+horse")); }

  static std::string Variable(const Admission& admission, std::string_view name) {
    for (const auto& [key, value] : admission.variables) {
      if (key == name) return value;
    }
    return "none";
  }

  // Where a request is sent, and "" when its page runs.
  std::string Sent(const std::string& page, const std::string& cookie = "", const std::string& method = "GET") {
    host::PageRequest request = Asked(page, cookie);
    request.method = method;
    const Decision decision = gate_.Admit(page, request);
    return std::holds_alternative<Admission>(decision) ? "" : HeaderOf(decision, "Location");
  }

  static inline std::string hash_;
  TemporaryFolder folder_;
  UsersFile users_{WithUsers(folder_.Path() / "users")};
  Log log_{(folder_.Path() / "log").string()};
  host::LiveDrillerMaker nobody_;
  std::vector<std::string> told_;  // what the trail told the server's log
  audit::Trail trail_{folder_.Path() / "audit", [this](std::string_view line) { told_.emplace_back(line); }};
  Gate gate_{{folder_.Path() / "users", folder_.Path() / "sessions", {}, std::chrono::milliseconds(50)},
             nobody_,
             log_,
             trail_};
};

}  // namespace kalvo::test
