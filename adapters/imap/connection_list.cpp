#include <algorithm>
#include <memory>
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
std::string Connection::ReadAnswerLine() {
  mailstream* stream = session_->imap->imap_stream;
  std::string line;
  for (;;) {
    const Buffer buffer(mmap_string_new(""));
    if (mailstream_read_line_remove_eol(stream, buffer.get()) == nullptr) Fail(MAILIMAP_ERROR_STREAM, "LIST");
    line.append(buffer->str, buffer->len);
    const auto literal = LiteralAtEnd(line);
    if (!literal) return line;
    line += "\r\n";
    std::string bytes(*literal, '\0');
    for (std::size_t at = 0; at < bytes.size();) {
      const auto got = mailstream_read(stream, bytes.data() + at, bytes.size() - at);
      if (got <= 0) Fail(MAILIMAP_ERROR_STREAM, "LIST");
      at += static_cast<std::size_t>(got);
    }
    line += bytes;
  }
}

std::vector<Folder> Connection::ListStates(std::string_view pattern, std::string_view prefix) {
  CheckSendable("The folder name", pattern);
  Command();
  const Transport::Patience patience(*transport_);
  mailstream* stream = session_->imap->imap_stream;
  const std::string command = Built([&](std::string& out) {
    Append(out, "LIST \"\" ", Quoted(pattern), " RETURN (STATUS (MESSAGES UIDNEXT UIDVALIDITY SIZE))\r\n");
  });
  if (mailimap_send_current_tag(session_->imap) != MAILIMAP_NO_ERROR ||
      mailstream_write(stream, command.data(), command.size()) < 0 || mailstream_flush(stream) < 0) {
    Fail(MAILIMAP_ERROR_STREAM, "LIST");
  }
  const std::string tag = std::to_string(session_->imap->imap_tag) + " ";
  ListAnswer answer;
  for (;;) {
    const std::string line = ReadAnswerLine();
    if (line.starts_with("* BYE")) Fail(MAILIMAP_ERROR_FATAL, "LIST");
    if (line.starts_with(tag + "OK")) break;
    if (line.starts_with(tag)) Fail(MAILIMAP_ERROR_LIST, "LIST");
    if (!line.starts_with("* ")) Fail(MAILIMAP_ERROR_PARSE, "LIST");
    answer.Take(line);
  }
  Check(MAILIMAP_NO_ERROR, "LIST");
  auto& folders = answer.Folders();
  std::erase_if(folders, [&](const Folder& each) { return !each.name.starts_with(prefix); });
  return std::move(folders);
}

}  // namespace kalvo::imap
