#include <libetpan/libetpan.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "adapters/imap/response_guard.h"
#include "fuzz/targets.h"

namespace kalvo::test {
namespace {

constexpr imap::Limits kLimits = {.lineBytes = 4096, .literalBytes = 4096, .answerBytes = 65536, .depth = 50};

// A server that says what it is told to and takes whatever it is sent, behind the guard.
struct Server {
  std::string_view left;
  imap::ResponseGuard& guard;
};

Server& ServerOf(mailstream_low* low) { return *static_cast<Server*>(low->data); }

ssize_t Read(mailstream_low* low, void* buffer, std::size_t size) {
  Server& server = ServerOf(low);
  const std::size_t count = std::min(size, server.left.size());
  if (count == 0 || !server.guard.Accept(server.left.substr(0, count))) return -1;
  std::memcpy(buffer, server.left.data(), count);
  server.left.remove_prefix(count);
  return static_cast<ssize_t>(count);
}

ssize_t Write(mailstream_low*, const void*, std::size_t size) { return static_cast<ssize_t>(size); }
int Close(mailstream_low*) { return 0; }
int Descriptor(mailstream_low*) { return -1; }
void Free(mailstream_low* low) { std::free(low); }
void Nothing(mailstream_low*) {}

mailstream_low_driver kDriver = {Read,    Write,   Close,   Descriptor, Free,   Nothing,
                                 nullptr, nullptr, nullptr, nullptr,    nullptr};

struct FreeSession {
  void operator()(mailimap* session) const { mailimap_free(session); }
};

// The steps of a page about a folder, for as long as the server answers.
void Browse(mailimap* session) {
  clist* found = nullptr;
  if (mailimap_login(session, "a", "b") != MAILIMAP_NO_ERROR) return;
  if (mailimap_list(session, "", "*", &found) != MAILIMAP_NO_ERROR) return;
  mailimap_list_result_free(found);
  if (mailimap_select(session, "INBOX") != MAILIMAP_NO_ERROR) return;
  mailimap_set* all = mailimap_set_new_interval(1, 0);
  mailimap_fetch_type* wanted = mailimap_fetch_type_new_fetch_att_list_empty();
  mailimap_fetch_type_new_fetch_att_list_add(wanted, mailimap_fetch_att_new_envelope());
  mailimap_fetch_type_new_fetch_att_list_add(wanted, mailimap_fetch_att_new_bodystructure());
  const int fetched = mailimap_uid_fetch(session, all, wanted, &found);
  mailimap_set_free(all);
  mailimap_fetch_type_free(wanted);
  if (fetched == MAILIMAP_NO_ERROR) mailimap_fetch_list_free(found);
}

}  // namespace

void ImapGuard(std::string_view bytes) {
  imap::ResponseGuard whole(kLimits), pieces(kLimits);
  const bool accepted = whole.Accept(bytes);
  for (std::size_t at = 0; at < bytes.size(); ++at) pieces.Accept(bytes.substr(at, 1));
  Require(accepted == pieces.Refusal().empty(), "the guard says the same of a whole and of its pieces");

  imap::ResponseGuard guard(kLimits);
  Server server{bytes, guard};
  mailstream_low* low = mailstream_low_new(&server, &kDriver);
  const std::unique_ptr<mailimap, FreeSession> session(mailimap_new(0, nullptr));
  mailstream* stream = mailstream_new(low, 4096);
  const int greeting = mailimap_connect(session.get(), stream);
  if (greeting == MAILIMAP_NO_ERROR_AUTHENTICATED || greeting == MAILIMAP_NO_ERROR_NON_AUTHENTICATED) {
    Browse(session.get());
  }
}

}  // namespace kalvo::test
