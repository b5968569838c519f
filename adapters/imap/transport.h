#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "adapters/imap/deadline.h"
#include "adapters/imap/imap_limits.h"
#include "base/file.h"

namespace kalvo::imap {

struct ServerAddress;

// The bytes to and from a server: a TCP connection, with TLS over it or not. Nothing here waits longer than the
// deadline, or than the limit of silence. A failure leaves its words in `Trouble`.
class Transport {
 public:
  Transport(const ServerAddress& address, const Limits& limits);
  ~Transport();
  Transport(const Transport&) = delete;
  Transport& operator=(const Transport&) = delete;

  // All operations from here on share this deadline.
  void Begin(const Deadline& deadline) { deadline_ = deadline; }

  // While it lives, a server may be silent for as long as the deadline lets it: some make their list of folders first,
  // and start over when we hang up.
  class Patience {
   public:
    explicit Patience(Transport& transport) : transport_(transport) { transport_.patient_ = true; }
    ~Patience() { transport_.patient_ = false; }
    Patience(const Patience&) = delete;
    Patience& operator=(const Patience&) = delete;

   private:
    Transport& transport_;
  };

  bool Connect();

  // Puts TLS over the connection: the server's certificate has to be valid and to carry the host's name.
  bool StartTls();

  // Bytes read or written, at least 1, or -1.
  std::ptrdiff_t Read(char* bytes, std::size_t size);
  std::ptrdiff_t Write(const char* bytes, std::size_t size);

  int Descriptor() const { return socket_.Handle(); }

  // What went wrong, as the end of a sentence about the server; "" while all is well.
  const std::string& Trouble() const { return trouble_; }
  bool TimedOut() const { return timedOut_; }
  bool IsSilent() const { return silent_; }

  std::size_t BytesRead() const { return bytesRead_; }

 private:
  struct Tls;

  bool ConnectTo(const void* address, std::size_t size, int family);
  bool WaitFor(short events);
  std::ptrdiff_t Fail(std::string_view trouble);
  std::ptrdiff_t TimeOut();
  std::string CertificateTrouble() const;

  const ServerAddress& address_;
  const Limits& limits_;
  Deadline deadline_;
  base::File socket_;
  std::unique_ptr<Tls> tls_;  // over the socket, so it goes first
  std::string trouble_;
  bool patient_ = false;
  bool timedOut_ = false;
  bool silent_ = false;  // timed out because nothing came, not because all took too long
  std::size_t bytesRead_ = 0;
};

}  // namespace kalvo::imap
