#include "adapters/imap/transport.h"

#include <fcntl.h>
#include <gnutls/gnutls.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>

#include "adapters/imap/imap_settings.h"
#include "kalvo/platform/append.h"

namespace kalvo::imap {

struct Transport::Tls {
  gnutls_certificate_credentials_t trust = nullptr;
  gnutls_session_t session = nullptr;

  ~Tls() {
    if (session) gnutls_deinit(session);
    if (trust) gnutls_certificate_free_credentials(trust);
  }

  // 0, or the library's code of what went wrong.
  int Prepare(const ServerAddress& address, int socket) {
    int code = gnutls_certificate_allocate_credentials(&trust);
    if (code < 0) return code;
    code = address.certificateFile.empty()
               ? gnutls_certificate_set_x509_system_trust(trust)
               : gnutls_certificate_set_x509_trust_file(trust, address.certificateFile.c_str(), GNUTLS_X509_FMT_PEM);
    if (code < 0) return code;
    code = gnutls_init(&session, GNUTLS_CLIENT | GNUTLS_NONBLOCK | GNUTLS_NO_SIGNAL);
    if (code < 0) return code;
    gnutls_set_default_priority(session);
    gnutls_credentials_set(session, GNUTLS_CRD_CERTIFICATE, trust);
    gnutls_server_name_set(session, GNUTLS_NAME_DNS, address.host.data(), address.host.size());
    gnutls_session_set_verify_cert(session, address.host.c_str(), 0);
    gnutls_transport_set_int(session, socket);
    return 0;
  }

  short Wanted() const { return gnutls_record_get_direction(session) == 0 ? POLLIN : POLLOUT; }
};

Transport::Transport(const ServerAddress& address, const Limits& limits)
    : address_(address), limits_(limits), deadline_(limits.operation) {}

Transport::~Transport() = default;

std::ptrdiff_t Transport::Fail(std::string_view trouble) {
  if (trouble_.empty()) trouble_ = trouble;
  return -1;
}

std::ptrdiff_t Transport::TimeOut() {
  timedOut_ = true;
  silent_ = !deadline_.Passed();
  return Fail(silent_ ? "did not answer in time" : "took too long");
}

bool Transport::WaitFor(short events) {
  pollfd waited{Descriptor(), events, 0};
  for (;;) {
    const int ready = poll(&waited, 1, deadline_.Wait(patient_ ? limits_.operation : limits_.silence));
    if (ready > 0 && !deadline_.Passed()) return true;
    if (ready < 0 && errno == EINTR) continue;
    TimeOut();
    return false;
  }
}

bool Transport::ConnectTo(const void* address, std::size_t size, int family) {
  socket_ = base::File(socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  if (!socket_) return Fail(std::strerror(errno)) > 0;
  const int on = 1;
  setsockopt(Descriptor(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  if (connect(Descriptor(), static_cast<const sockaddr*>(address), static_cast<socklen_t>(size)) == 0) return true;
  int error = errno;
  if (error == EINPROGRESS) {
    if (!WaitFor(POLLOUT)) return false;
    socklen_t length = sizeof error;
    getsockopt(Descriptor(), SOL_SOCKET, SO_ERROR, &error, &length);
    if (error == 0) return true;
  }
  socket_.Close();
  trouble_ = Built([&](std::string& out) { Append(out, "cannot be reached: ", std::strerror(error)); });
  return false;
}

bool Transport::Connect() {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  const int code = getaddrinfo(address_.host.c_str(), std::to_string(address_.port).c_str(), &hints, &found);
  if (code != 0) return Fail(std::string("has no address: ") + gai_strerror(code)) > 0;
  bool connected = false;
  for (const addrinfo* each = found; each && !connected && !timedOut_; each = each->ai_next) {
    connected = ConnectTo(each->ai_addr, each->ai_addrlen, each->ai_family);
  }
  freeaddrinfo(found);
  if (connected) trouble_.clear();
  return connected;
}

bool Transport::StartTls() {
  tls_ = std::make_unique<Tls>();
  int code = tls_->Prepare(address_, Descriptor());
  while (code == 0) {
    code = gnutls_handshake(tls_->session);
    if (code == 0) return true;
    if (gnutls_error_is_fatal(code) != 0) break;
    if (!WaitFor(tls_->Wanted())) return false;
    code = 0;
  }
  const std::string why =
      code == GNUTLS_E_CERTIFICATE_VERIFICATION_ERROR ? CertificateTrouble() : gnutls_strerror(code);
  Fail(Built([&](std::string& out) { Append(out, "has no TLS that can be trusted: ", why); }));
  return false;
}

// Which of the reasons it is: expired, of another name, from an authority that is not trusted.
std::string Transport::CertificateTrouble() const {
  gnutls_datum_t text{};
  const auto status = gnutls_session_get_verify_cert_status(tls_->session);
  if (gnutls_certificate_verification_status_print(status, GNUTLS_CRT_X509, &text, 0) < 0) return "its certificate";
  std::string why(reinterpret_cast<const char*>(text.data), text.size);
  gnutls_free(text.data);
  while (why.ends_with(' ') || why.ends_with('.')) why.pop_back();
  return why;
}

std::ptrdiff_t Transport::Read(char* bytes, std::size_t size) {
  if (!trouble_.empty()) return -1;
  if (deadline_.Passed()) return TimeOut();
  for (;;) {
    const std::ptrdiff_t count =
        tls_ ? gnutls_record_recv(tls_->session, bytes, size) : recv(Descriptor(), bytes, size, 0);
    if (count > 0) {
      bytesRead_ += static_cast<std::size_t>(count);
      return count;
    }
    if (count == 0) return Fail("closed the connection");
    const bool again = tls_ ? gnutls_error_is_fatal(static_cast<int>(count)) == 0
                            : errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
    if (!again && count == GNUTLS_E_PREMATURE_TERMINATION) return Fail("closed the connection");
    if (!again) {
      const char* why = tls_ ? gnutls_strerror(static_cast<int>(count)) : std::strerror(errno);
      return Fail(Built([&](std::string& out) { Append(out, "broke the connection: ", why); }));
    }
    if (!WaitFor(tls_ ? tls_->Wanted() : POLLIN)) return -1;
  }
}

std::ptrdiff_t Transport::Write(const char* bytes, std::size_t size) {
  if (!trouble_.empty()) return -1;
  for (;;) {
    const std::ptrdiff_t count =
        tls_ ? gnutls_record_send(tls_->session, bytes, size) : send(Descriptor(), bytes, size, MSG_NOSIGNAL);
    if (count > 0) return count;
    const bool again = tls_ ? gnutls_error_is_fatal(static_cast<int>(count)) == 0
                            : errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
    if (!again) return Fail("closed the connection");
    if (!WaitFor(tls_ ? tls_->Wanted() : POLLOUT)) return -1;
  }
}

}  // namespace kalvo::imap
