#include <gnutls/gnutls.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string>

#include "adapters/imap/imap_connection.h"
#include "adapters/imap/imap_session.h"
#include "adapters/imap/imap_settings.h"
#include "adapters/imap/list_answer.h"
#include "adapters/imap/response_guard.h"
#include "adapters/imap/transport.h"
#include "kalvo/platform/append.h"

namespace kalvo::imap {

namespace {

struct FreeText {
  void operator()(MMAPString* text) const { mmap_string_free(text); }
};
using Buffer = std::unique_ptr<MMAPString, FreeText>;

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + "\"";
}

}  // namespace

bool Connection::ListsStates() { return Has("LIST-STATUS") && Has("STATUS=SIZE"); }

// One line of an answer, with the literals that it goes on behind.
std::string Connection::ReadAnswerLine(std::string_view step) {
  mailstream* stream = session_->imap->imap_stream;
  std::string line;
  for (;;) {
    const Buffer buffer(mmap_string_new(""));
    if (!mailstream_read_line_remove_eol(stream, buffer.get())) Fail(MAILIMAP_ERROR_STREAM, step);
    line.append(buffer->str, buffer->len);
    const auto literal = LiteralAtEnd(line);
    if (!literal) return line;
    line += "\r\n";
    std::string bytes(*literal, '\0');
    for (std::size_t at = 0; at < bytes.size();) {
      const auto got = mailstream_read(stream, bytes.data() + at, bytes.size() - at);
      if (got <= 0) Fail(MAILIMAP_ERROR_STREAM, step);
      at += static_cast<std::size_t>(got);
    }
    line += bytes;
  }
}

void Connection::SendLine(const std::string& line, std::string_view step) {
  mailstream* stream = session_->imap->imap_stream;
  const bool sent = mailstream_write(stream, line.data(), line.size()) >= 0 &&
                    mailstream_write(stream, "\r\n", 2) >= 0 && mailstream_flush(stream) >= 0;
  if (!sent) Fail(MAILIMAP_ERROR_STREAM, step);
}

// Says what the mail library has no command for, and hands over the lines of the answer.
void Connection::Say(const std::string& command, std::string_view step, const TakeLine& take) {
  Command();
  if (mailimap_send_current_tag(session_->imap) != MAILIMAP_NO_ERROR) Fail(MAILIMAP_ERROR_STREAM, step);
  SendLine(command, step);
  const std::string tag = std::to_string(session_->imap->imap_tag) + " ";
  for (;;) {
    const std::string line = ReadAnswerLine(step);
    if (line.starts_with("* BYE")) Fail(MAILIMAP_ERROR_FATAL, step);
    if (line.starts_with(tag + "OK")) break;
    if (line.starts_with(tag + "NO ") || line.starts_with(tag + "BAD ")) {
      refusal_ = line.substr(line.find(' ', tag.size()) + 1);
      Fail(MAILIMAP_ERROR_EXTENSION, step);
    }
    if (!line.starts_with("* ") && !line.starts_with("+")) Fail(MAILIMAP_ERROR_PARSE, step);
    take(line);
  }
  Check(MAILIMAP_NO_ERROR, step);
}

std::vector<Folder> Connection::ListStates(std::string_view pattern, std::string_view prefix) {
  CheckSendable("The folder name", pattern);
  const Transport::Patience patience(*transport_);
  const std::string command = Built([&](std::string& out) {
    Append(out, "LIST \"\" ", Quoted(pattern), " RETURN (STATUS (MESSAGES UIDNEXT UIDVALIDITY SIZE))");
  });
  ListAnswer answer;
  Say(command, "LIST", [&](const std::string& line) { answer.Take(line); });
  auto& folders = answer.Folders();
  std::erase_if(folders, [&](const Folder& each) { return !each.name.starts_with(prefix); });
  return std::move(folders);
}

void Connection::LogInFor(const Login& login, std::string_view step) {
  std::string words = login.user == login.authenticates ? std::string() : login.user;
  words += '\0';
  words += login.authenticates;
  words += '\0';
  words += login.password;
  const gnutls_datum_t plain{reinterpret_cast<unsigned char*>(words.data()), static_cast<unsigned>(words.size())};
  gnutls_datum_t encoded{};
  if (gnutls_base64_encode2(&plain, &encoded) < 0) throw std::bad_alloc();
  const std::string answer(reinterpret_cast<const char*>(encoded.data), encoded.size);
  gnutls_free(encoded.data);
  bool isAsked = false;
  Say("AUTHENTICATE PLAIN", step, [&](const std::string& line) {
    if (!line.starts_with("+") || isAsked) return;
    isAsked = true;
    SendLine(answer, step);
  });
  session_->imap->imap_state = MAILIMAP_STATE_AUTHENTICATED;
}

}  // namespace kalvo::imap
