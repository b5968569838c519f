#include "support/process.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <grp.h>
#include <netinet/in.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>

#include "support/temporary_folder.h"

namespace kalvo::test {

namespace {

using namespace std::chrono_literals;

void BecomeUser(const passwd& user) {
  if (setgroups(0, nullptr) != 0 || setgid(user.pw_gid) != 0 || setuid(user.pw_uid) != 0) _exit(126);
}

// In the child: the last of its steps does not return.
[[noreturn]] void Execute(const Command& command, char* const* arguments, const passwd* user, int input) {
  const int log = open(command.log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
  dup2(input, 0);
  dup2(log, 1);
  dup2(log, 2);
  if (user) BecomeUser(*user);
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (chdir("/") != 0) _exit(126);
  execv(arguments[0], arguments);
  _exit(127);
}

pid_t Start(const Command& command) {
  std::vector<char*> arguments;
  for (const auto& argument : command.arguments) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  const bool changesUser = !command.user.empty() && geteuid() == 0;
  const passwd* user = changesUser ? getpwnam(command.user.c_str()) : nullptr;
  if (changesUser && !user) throw std::runtime_error("there is no user " + command.user);
  const auto inputFile = command.log.string() + ".input";
  WriteFile(inputFile, command.input);
  const int input = open(inputFile.c_str(), O_RDONLY | O_CLOEXEC);
  const pid_t process = fork();
  if (process == 0) Execute(command, arguments.data(), user, input);
  close(input);
  if (process < 0) throw std::runtime_error("cannot start " + command.arguments[0]);
  return process;
}

[[noreturn]] void FailWith(const std::string& what, const std::filesystem::path& log) {
  throw std::runtime_error(what + "; its output:\n" + ReadFile(log));
}

bool Listens(int port) {
  const int client = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const bool connected = connect(client, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  close(client);
  return connected;
}

}  // namespace

void Run(const Command& command) {
  const pid_t process = Start(command);
  int status = 0;
  waitpid(process, &status, 0);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) FailWith(command.arguments[0] + " failed", command.log);
}

Server::Server(const Command& command, int stopSignal)
    : log_(command.log), stopSignal_(stopSignal), process_(Start(command)) {}

Server::~Server() {
  if (process_ <= 0) return;
  kill(process_, stopSignal_);
  for (const auto end = std::chrono::steady_clock::now() + 20s; std::chrono::steady_clock::now() < end;) {
    if (waitpid(process_, nullptr, WNOHANG) == process_) return;
    std::this_thread::sleep_for(10ms);
  }
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}

void Server::WaitForPort(int port) {
  for (const auto end = std::chrono::steady_clock::now() + 30s; std::chrono::steady_clock::now() < end;) {
    if (Listens(port)) return;
    if (waitpid(process_, nullptr, WNOHANG) == process_) {
      process_ = 0;
      FailWith("the server has ended", log_);
    }
    std::this_thread::sleep_for(20ms);
  }
  FailWith("the server does not listen", log_);
}

int FreePort() {
  const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  const bool bound = bind(probe, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
                     getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size) == 0;
  close(probe);
  if (!bound) throw std::runtime_error("no free port");
  return ntohs(address.sin_port);
}

}  // namespace kalvo::test
