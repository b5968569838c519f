#include "support/dovecot_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

#include "support/process.h"

namespace kalvo::test {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kSettings = R"(base_dir = @D@/run
state_dir = @D@/state
log_path = @D@/dovecot.log
protocols = imap
listen = 127.0.0.1
ssl = no
disable_plaintext_auth = no
first_valid_uid = 1
mail_location = maildir:~/Maildir
mail_plugins = acl
auth_master_user_separator = *
auth_failure_delay = 0
mail_fsync = never
passdb {
  driver = passwd-file
  args = @D@/masters
  master = yes
  result_success = continue
}
passdb {
  driver = passwd-file
  args = @D@/passwd
}
userdb {
  driver = static
  args = uid=nobody gid=nogroup home=@D@/users/%u
}
namespace inbox {
  inbox = yes
  separator = /
}
namespace public {
  type = public
  separator = /
  prefix = Public/
  location = maildir:@D@/public:INDEX=~/public-index
  subscriptions = no
}
protocol imap {
  mail_plugins = acl imap_acl
  mail_max_userip_connections = 50
}
plugin {
  acl = vfile
  acl_user = %u
}
service imap-login {
  inet_listener imap {
    port = @PORT@
  }
  inet_listener imaps {
    port = 0
  }
}
service anvil {
  unix_listener anvil-auth-penalty {
    mode = 0
  }
}
)";

void ReplaceAll(std::string& text, std::string_view what, std::string_view with) {
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
}

sockaddr_in Here(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

int Connected(std::uint16_t port) {
  const int made = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const auto address = Here(port);
  if (connect(made, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return made;
  close(made);
  return -1;
}

// Mail belongs to nobody, who also has to get there.
void GiveAway(const fs::path& path) {
  const auto* user = getpwnam("nobody");
  const auto* group = getgrnam("nogroup");
  if (user == nullptr || group == nullptr) throw std::runtime_error("no user nobody");
  if (chown(path.c_str(), user->pw_uid, group->gr_gid) != 0) throw std::runtime_error("the tests do not run as root");
}

}  // namespace

DovecotServer::DovecotServer(const std::vector<std::string>& users, std::string_view moreSettings)
    : port_(static_cast<std::uint16_t>(FreePort())) {
  fs::permissions(folder_.Path(), fs::perms(0755));
  for (const char* name : {"users", "public"}) {
    fs::create_directory(folder_.Path() / name);
    GiveAway(folder_.Path() / name);
  }
  WriteSettings(users, moreSettings);
  Start();
}

DovecotServer::~DovecotServer() { Kill(); }

void DovecotServer::WriteSettings(const std::vector<std::string>& users, std::string_view moreSettings) const {
  std::string settings(kSettings);
  settings += moreSettings;
  ReplaceAll(settings, "@D@", Folder());
  ReplaceAll(settings, "@PORT@", std::to_string(port_));
  Write("dovecot.conf", settings);
  std::string passwords = "kalvo:{PLAIN}pw\n";
  for (const auto& user : users) passwords += user + ":{PLAIN}pw\n";
  Write("passwd", passwords);
  Write("masters", "master:{PLAIN}pw\n");
}

std::string DovecotServer::Write(std::string_view name, std::string_view text) const {
  const auto path = Folder() + "/" + std::string(name);
  std::ofstream(path, std::ios::binary) << text;
  return path;
}

void DovecotServer::Start() {
  fs::remove_all(Folder() + "/run");
  process_ = fork();
  if (process_ == 0) {
    setsid();
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    const int nowhere = open("/dev/null", O_RDWR);
    for (int each : {0, 1, 2}) dup2(nowhere, each);
    const auto file = Folder() + "/dovecot.conf";
    execlp("dovecot", "dovecot", "-F", "-c", file.c_str(), nullptr);
    _exit(127);
  }
  for (int i = 0; i < 1500; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const int made = Connected(port_);
    if (made < 0) continue;
    char greeting[16] = {};
    const bool greets = recv(made, greeting, 4, MSG_WAITALL) == 4 && std::string_view(greeting) == "* OK";
    close(made);
    if (greets) return;
  }
  throw std::runtime_error("Dovecot does not start");
}

void DovecotServer::Signal(int signal) const {
  if (process_ > 0) kill(-process_, signal);
}

void DovecotServer::Kill() {
  Signal(SIGKILL);
  if (process_ > 0) waitpid(process_, nullptr, 0);
  process_ = 0;
}

void DovecotServer::Pause() { Signal(SIGSTOP); }
void DovecotServer::Resume() { Signal(SIGCONT); }

void DovecotServer::MakePublicFolder(const std::vector<std::string>& names, std::string_view rights) const {
  auto path = Folder() + "/public/";
  for (const auto& name : names) path += "." + name;
  for (const auto& made : {path, path + "/cur", path + "/new", path + "/tmp"}) {
    fs::create_directory(made);
    GiveAway(made);
  }
  std::ofstream(path + "/dovecot-acl") << "anyone lrs\nuser=kalvo " << rights << "\n";
}

std::vector<std::string> DovecotServer::AllMessages() const {
  std::vector<std::string> messages;
  for (const char* tree : {"users", "public"}) {
    for (const auto& entry : fs::recursive_directory_iterator(Folder() + "/" + tree)) {
      const auto parent = entry.path().parent_path().filename();
      if (!entry.is_regular_file() || (parent != "cur" && parent != "new")) continue;
      std::ifstream file(entry.path(), std::ios::binary);
      std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
      if (!text.starts_with("X-Kalvo-Held: ")) messages.push_back(std::move(text));
    }
  }
  std::sort(messages.begin(), messages.end());
  return messages;
}

PlainImap::PlainImap(std::uint16_t port, std::string_view user, std::string_view password) : socket_(Connected(port)) {
  if (socket_ < 0) throw std::runtime_error("no mail server to speak to");
  Run("LOGIN " + Quoted(user) + " " + Quoted(password));
}

PlainImap::~PlainImap() { close(socket_); }

std::string PlainImap::Run(const std::string& command) {
  std::string tag("T");
  tag += std::to_string(++tag_);
  const std::string line = tag + " " + command + "\r\n";
  for (std::size_t sent = 0; sent < line.size();) {
    const auto count = send(socket_, line.data() + sent, line.size() - sent, MSG_NOSIGNAL);
    if (count <= 0) throw std::runtime_error("the mail server hangs up on " + command.substr(0, 100));
    sent += static_cast<std::size_t>(count);
  }
  std::string answer;
  for (;;) {
    char bytes[4096];
    const auto count = recv(socket_, bytes, sizeof bytes, 0);
    if (count <= 0) throw std::runtime_error("the mail server hangs up on " + command.substr(0, 100));
    answer.append(bytes, static_cast<std::size_t>(count));
    auto at = answer.rfind("\r\n" + tag + " ");
    at = at == std::string::npos ? (answer.starts_with(tag + " ") ? 0 : at) : at + 2;
    if (at == std::string::npos || !answer.ends_with("\r\n")) continue;
    EXPECT_EQ(answer.compare(at + tag.size(), 4, " OK "), 0) << command.substr(0, 200) << "\n" << answer.substr(at);
    return answer;
  }
}

void PlainImap::Append(std::string_view folder, std::string_view text, std::int64_t received) {
  std::string wired;
  for (const char c : text) {
    if (c == '\n') wired += '\r';
    wired += c;
  }
  const std::time_t time = received;
  std::tm parts{};
  gmtime_r(&time, &parts);
  char date[40];
  std::strftime(date, sizeof date, "%d-%b-%Y %H:%M:%S +0000", &parts);
  Run("APPEND " + Quoted(folder) + " \"" + date + "\" {" + std::to_string(wired.size()) + "+}\r\n" + wired);
}

std::string Quoted(std::string_view name) {
  std::string quoted = "\"";
  for (const char c : name) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + "\"";
}

}  // namespace kalvo::test
