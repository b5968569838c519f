#include "adapters/imap/fake_mail_server.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace kalvo::test {

namespace {

constexpr int kTick = 20;  // milliseconds between two looks whether the server is to stop

// What is said to a well-behaved question, before "OK".
constexpr struct {
  std::string_view command, answer;
} kAnswers[] = {
    {"CAPABILITY", "* CAPABILITY IMAP4rev1 UIDPLUS SORT LIST-STATUS STATUS=SIZE\r\n"},
    {"LIST \"\" \"\"", "* LIST (\\Noselect) \"/\" \"\"\r\n"},
    {"LIST", "* LIST () \"/\" INBOX\r\n"},
    {"STATUS", "* STATUS INBOX (MESSAGES 3 UIDNEXT 4 UIDVALIDITY 7)\r\n"},
    {"SELECT", "* 3 EXISTS\r\n* OK [UIDVALIDITY 7] ok\r\n* OK [UIDNEXT 4] ok\r\n"},
    {"EXAMINE", "* 3 EXISTS\r\n* OK [UIDVALIDITY 7] ok\r\n* OK [UIDNEXT 4] ok\r\n"},
    {"UID SEARCH", "* SEARCH 1 2 3\r\n"},
    {"LOGOUT", "* BYE\r\n"},
};

std::string Literal(const std::string& text) { return "{" + std::to_string(text.size()) + "}\r\n" + text; }

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

bool Talk::ReadBytes(std::size_t count, std::string& bytes) {
  while (!stop_ && read_.size() < count) {
    pollfd waited{socket_, POLLIN, 0};
    if (poll(&waited, 1, kTick) <= 0) continue;
    char more[4096];
    const auto got = recv(socket_, more, sizeof more, 0);
    if (got <= 0) return false;
    read_.append(more, static_cast<std::size_t>(got));
  }
  bytes = read_.substr(0, count);
  read_.erase(0, bytes.size());
  return bytes.size() == count;
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

void FakeMailServer::Remove(const std::string& uid) {
  const std::lock_guard guard(lock_);
  gone_.insert(uid);
}

std::string FakeMailServer::Held() const {
  const std::lock_guard guard(lock_);
  return held_;
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

void FakeMailServer::AnswerWell(Talk& talk, const std::string& tag, const std::string& command) {
  if (command.starts_with("APPEND")) return Append(talk, tag, command);
  std::string answer;
  for (const auto& each : kAnswers) {
    if (!command.starts_with(each.command)) continue;
    answer = each.answer;
    break;
  }
  const std::lock_guard guard(lock_);
  if (command.starts_with("SELECT") || command.starts_with("EXAMINE")) {
    inHolding_ = command.find("held") != std::string::npos;
  }
  if (command.starts_with("LIST") && command.find("held") != std::string::npos) {
    answer = held_.empty() ? "" : "* LIST () \"/\" \"Kalvo held\"\r\n";
  }
  if (command.starts_with("UID FETCH")) answer = FetchAnswer(command);
  if (command.starts_with("UID EXPUNGE")) {
    if (inHolding_) {
      held_.clear();
    } else {
      gone_.insert(command.substr(12));
    }
  }
  talk.Send(answer + tag + " OK done\r\n");
}

void FakeMailServer::Append(Talk& talk, const std::string& tag, const std::string& command) {
  const std::size_t size = std::stoul(command.substr(command.rfind('{') + 1));
  std::string text, end;
  if (!talk.Send("+ go on\r\n") || !talk.ReadBytes(size, text) || !talk.ReadLine(end)) return;
  {
    const std::lock_guard guard(lock_);
    held_ = text;
  }
  talk.Send(tag + " OK [APPENDUID 7 1] done\r\n");
}

std::string FakeMailServer::FetchAnswer(const std::string& command) const {
  const auto asks = [&](std::string_view word) { return command.find(word) != std::string::npos; };
  std::string answer;
  for (const std::string number : {"1", "2", "3"}) {
    if (inHolding_ ? (number != "1" || held_.empty()) : gone_.contains(number)) continue;
    const std::string text = inHolding_ ? held_ : "Subject: " + number + "\r\n\r\nx\r\n";
    answer += "* " + number + " FETCH (UID " + number + " RFC822.SIZE 10" + number + " INTERNALDATE \"0" + number +
              "-Jan-1999 00:00:00 +0000\"";
    if (asks("FLAGS")) answer += inHolding_ ? " FLAGS (\\Draft)" : " FLAGS (\\Seen)";
    if (asks("BODY.PEEK[]")) answer += " BODY[]<0> " + Literal(text);
    if (asks("X-Kalvo-Held")) {
      answer += " BODY[HEADER.FIELDS (X-Kalvo-Held)] " + Literal(text.substr(0, text.find("Subject:")));
    }
    if (asks("SUBJECT")) {
      answer += " BODY[HEADER.FIELDS (SUBJECT FROM DATE CONTENT-TYPE)]<0> " +
                Literal("Subject: Subject " + number +
                        "\r\nFrom: a@b.example\r\nDate: Fri, 01 Jan 1999 00:00:00 +0000\r\n\r\n");
    }
    if (asks("BODYSTRUCTURE")) answer += " BODYSTRUCTURE (\"text\" \"plain\" NIL NIL NIL \"7bit\" 5 1)";
    answer += ")\r\n";
  }
  return answer;
}

}  // namespace kalvo::test
