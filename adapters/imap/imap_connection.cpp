#include "adapters/imap/imap_connection.h"

#include <algorithm>
#include <new>

#include "adapters/imap/imap_error.h"
#include "adapters/imap/imap_session.h"
#include "adapters/imap/imap_settings.h"
#include "adapters/imap/response_guard.h"
#include "adapters/imap/transport.h"
#include "kalvo/platform/append.h"

namespace kalvo::imap {

namespace {

constexpr std::chrono::milliseconds kFarewell{200};
constexpr std::size_t kAnswerShown = 200;
constexpr std::string_view kLogin = "LOGIN";

bool Succeeded(int code) {
  return code == MAILIMAP_NO_ERROR || code == MAILIMAP_NO_ERROR_AUTHENTICATED ||
         code == MAILIMAP_NO_ERROR_NON_AUTHENTICATED;
}

// What the server said, fit for an error's text: at most so many printable ASCII characters.
std::string Shown(const char* answer) {
  std::string text = answer ? answer : "";
  text.resize(std::min(text.size(), kAnswerShown));
  for (char& c : text) c = c >= 0x20 && c < 0x7F ? c : '?';
  return text;
}

}  // namespace

Connection::Session::Session(Transport& transport, ResponseGuard& guard)
    : imap(mailimap_new(0, nullptr)), stream(NewGuardedStream(transport, guard)) {
  if (!imap) throw std::bad_alloc();
}

Connection::Session::~Session() {
  // Logging out closes the stream only where the server answers.
  if (imap->imap_stream) mailimap_logout(imap);
  if (imap->imap_stream) {
    mailstream_close(imap->imap_stream);
    imap->imap_stream = nullptr;
  }
  mailimap_free(imap);
}

Connection::Connection(const ServerAddress& address, const Login& login, const Limits& limits, const Deadline& deadline)
    : name_(Built([&](std::string& out) { Append(out, address.host, ":", address.port); })),
      transport_(std::make_unique<Transport>(address, limits)),
      guard_(std::make_unique<ResponseGuard>(limits)) {
  CheckSendable("The login name", login.user);
  CheckSendable("The password", login.password);
  transport_->Begin(deadline);
  Connect(address);
  LogIn(login);
}

Connection::~Connection() {
  transport_->Begin(Deadline(kFarewell));
  session_.reset();
}

void Connection::Begin(const Deadline& deadline) { transport_->Begin(deadline); }

void Connection::Connect(const ServerAddress& address) {
  constexpr auto kStep = "connecting";
  if (!transport_->Connect()) Fail(MAILIMAP_ERROR_CONNECTION_REFUSED, kStep);
  if (address.security == Security::Tls && !transport_->StartTls()) Fail(MAILIMAP_ERROR_SSL, kStep);
  session_ = std::make_unique<Session>(*transport_, *guard_);
  const int code = mailimap_connect(session_->imap, session_->stream);
  if (!Succeeded(code)) {
    if (!session_->imap->imap_stream) mailstream_close(session_->stream);
    Fail(code, kStep);
  }
  if (address.security != Security::StartTls) return;
  Command();
  Check(mailimap_starttls(session_->imap), "STARTTLS");
  // Bytes that came before the encryption are not the server's word.
  if (session_->stream->read_buffer_len > 0) Fail(MAILIMAP_ERROR_PARSE, "STARTTLS");
  if (!transport_->StartTls()) Fail(MAILIMAP_ERROR_SSL, "STARTTLS");
}

void Connection::LogIn(const Login& login) {
  if (login.authenticates.empty()) {
    Command();
    Check(mailimap_login(session_->imap, login.user.c_str(), login.password.c_str()), kLogin);
  } else {
    LogInFor(login, kLogin);
  }
  mailimap_capability_data* data = nullptr;
  Command();
  Check(mailimap_capability(session_->imap, &data), "CAPABILITY");
  Owned<mailimap_capability_data>{data};
}

void Connection::Command() { guard_->Begin(); }

void Connection::Check(int code, std::string_view step) {
  if (!Succeeded(code)) Fail(code, step);
  if (!guard_->Refusal().empty()) Fail(MAILIMAP_ERROR_STREAM, step);
}

// The one place where the library's codes become an error.
void Connection::Fail(int code, std::string_view step) {
  Fault fault = Fault::Refused;
  std::string what;
  if (!guard_->Refusal().empty()) {
    fault = Fault::Nonsense;
    what = guard_->Refusal();
  } else if (!transport_->Trouble().empty()) {
    const bool connecting = code == MAILIMAP_ERROR_CONNECTION_REFUSED || code == MAILIMAP_ERROR_SSL;
    fault = transport_->IsSilent()   ? Fault::Silent
            : transport_->TimedOut() ? Fault::TooSlow
            : connecting             ? Fault::Unreachable
                                     : Fault::Lost;
    what = transport_->Trouble();
  } else if (code == MAILIMAP_ERROR_STREAM || code == MAILIMAP_ERROR_FATAL ||
             code == MAILIMAP_ERROR_DONT_ACCEPT_CONNECTION) {
    fault = Fault::Lost;
    what = "ended the session";
  } else if (code == MAILIMAP_ERROR_PARSE || code == MAILIMAP_ERROR_PROTOCOL || code == MAILIMAP_ERROR_BAD_STATE) {
    fault = Fault::Nonsense;
    what = "answered what the protocol does not have";
  } else if (code == MAILIMAP_ERROR_MEMORY) {
    throw std::bad_alloc();
  } else {
    what = "refused";
    if (step == kLogin) fault = Fault::LoginRefused;
    const char* said = session_ ? session_->imap->imap_response : nullptr;
    const auto answer = Shown(refusal_.empty() ? said : refusal_.c_str());
    refusal_.clear();
    if (!answer.empty()) Append(what, ": ", answer);
  }
  // A server without such a mailbox often has no other answer.
  const bool noMailbox = step == kLogin && fault == Fault::Lost;
  throw ImapError(fault, Built([&](std::string& out) {
                    Append(out, "The mail server ", name_, " ", what, " (", step, ").");
                    if (noMailbox) Append(out, " Does it have this mailbox?");
                  }));
}

bool Connection::Has(const char* capability) { return mailimap_has_extension(session_->imap, capability) != 0; }

std::size_t Connection::BytesRead() const { return transport_->BytesRead(); }

}  // namespace kalvo::imap
