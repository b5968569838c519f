#include "adapters/imap/fake_mail_server.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace kalvo::tests {

namespace {

constexpr int kTick = 20;  // milliseconds between two looks whether the server is to stop

// What is said to a well-behaved question, before "OK".
constexpr struct {
  std::string_view command, answer;
} kAnswers[] = {
    {"CAPABILITY", "* CAPABILITY IMAP4rev1 UIDPLUS SORT\r\n"},
    {"LIST \"\" \"\"", "* LIST (\\Noselect) \"/\" \"\"\r\n"},
    {"LIST", "* LIST () \"/\" INBOX\r\n"},
    {"STATUS", "* STATUS INBOX (MESSAGES 3 UIDNEXT 4 UIDVALIDITY 7)\r\n"},
    {"EXAMINE", "* 3 EXISTS\r\n* OK [UIDVALIDITY 7] ok\r\n* OK [UIDNEXT 4] ok\r\n"},
    {"UID SEARCH", "* SEARCH 1 2 3\r\n"},
    {"LOGOUT", "* BYE\r\n"},
};

std::string FetchAnswer(bool whole) {
  std::string answer;
  for (const std::string number : {"1", "2", "3"}) {
    answer += "* " + number + " FETCH (UID " + number + " RFC822.SIZE 10" + number + " INTERNALDATE \"0" + number +
              "-Jan-1999 00:00:00 +0000\"";
    if (whole) {
      answer += " ENVELOPE (\"Fri, 01 Jan 1999 00:00:00 +0000\" \"Subject " + number +
                "\" ((NIL NIL \"a\" \"b.example\")) NIL NIL NIL NIL NIL NIL NIL)"
                " BODYSTRUCTURE (\"text\" \"plain\" NIL NIL NIL \"7bit\" 5 1)";
    }
    answer += ")\r\n";
  }
  return answer;
}

}  // namespace

bool Talk::Send(std::string_view text) const {
  while (!text.empty() && !stop_) {
    pollfd waited{socket_, POLLOUT, 0};
    if (poll(&waited, 1, kTick) <= 0) continue;
    const auto count = send(socket_, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  return !stop_;
}

bool Talk::ReadLine(std::string& line) {
  while (!stop_) {
    const auto end = read_.find("\r\n");
    if (end != std::string::npos) {
      line = read_.substr(0, end);
      read_.erase(0, end + 2);
      return true;
    }
    pollfd waited{socket_, POLLIN, 0};
    if (poll(&waited, 1, kTick) <= 0) continue;
    char bytes[4096];
    const auto count = recv(socket_, bytes, sizeof bytes, 0);
    if (count <= 0) return false;
    read_.append(bytes, static_cast<std::size_t>(count));
  }
  return false;
}

void Talk::Hang() const {
  char byte;
  while (!stop_) {
    pollfd waited{socket_, POLLIN, 0};
    if (poll(&waited, 1, kTick) > 0 && recv(socket_, &byte, 1, 0) <= 0) return;
  }
}

void Talk::Close() const { shutdown(socket_, SHUT_RDWR); }

FakeMailServer::FakeMailServer() : listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  if (bind(listener_, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener_, 8) != 0 ||
      getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    throw std::runtime_error("no port to listen on");
  }
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] { Serve(); });
}

FakeMailServer::~FakeMailServer() {
  stop_ = true;
  thread_.join();
  close(listener_);
}

void FakeMailServer::Misbehave(const std::string& command, Answer answer) {
  const std::lock_guard guard(lock_);
  misbehaving_ = command;
  answer_ = std::move(answer);
}

std::vector<std::string> FakeMailServer::Commands() const {
  const std::lock_guard guard(lock_);
  return commands_;
}

void FakeMailServer::Serve() {
  while (!stop_) {
    pollfd waited{listener_, POLLIN, 0};
    if (poll(&waited, 1, kTick) <= 0) continue;
    const int made = accept(listener_, nullptr, nullptr);
    if (made < 0) continue;
    ++connections_;
    ServeOne(made);
    close(made);
  }
}

void FakeMailServer::ServeOne(int socket) {
  Talk talk(socket, stop_);
  const auto misbehaves = [&](std::string_view command) {
    const std::lock_guard guard(lock_);
    return answer_ && command.starts_with(misbehaving_) ? answer_ : Answer();
  };
  if (const auto answer = misbehaves("GREETING")) {
    answer(talk, "");
  } else if (!talk.Send("* OK ready\r\n")) {
    return;
  }
  std::string line;
  while (talk.ReadLine(line)) {
    const auto blank = line.find(' ');
    const auto tag = line.substr(0, blank);
    const auto command = blank == std::string::npos ? "" : line.substr(blank + 1);
    {
      const std::lock_guard guard(lock_);
      commands_.push_back(command);
    }
    if (const auto answer = misbehaves(command)) {
      answer(talk, tag);
    } else {
      AnswerWell(talk, tag, command);
    }
  }
}

void FakeMailServer::AnswerWell(Talk& talk, const std::string& tag, const std::string& command) const {
  std::string answer;
  for (const auto& each : kAnswers) {
    if (!command.starts_with(each.command)) continue;
    answer = each.answer;
    break;
  }
  if (command.starts_with("UID FETCH")) answer = FetchAnswer(command.find("ENVELOPE") != std::string::npos);
  talk.Send(answer + tag + " OK done\r\n");
}

}  // namespace kalvo::tests
