#include "host/web/listening.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "host/parts/setting_error.h"
#include "host/web/address.h"

namespace kalvo::web {
namespace {

// Binds a throw-away socket; the errno of a failure, or 0.
int TryToBind(const Address& address) {
  const bool six = address.host.front() == '[';
  const base::File probe(socket(six ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (!probe) return errno;
  const int yes = 1;
  setsockopt(probe.Handle(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  sockaddr_in four{};
  four.sin_family = AF_INET;
  four.sin_port = htons(address.port);
  inet_pton(AF_INET, address.host.c_str(), &four.sin_addr);
  sockaddr_in6 long6{};
  long6.sin6_family = AF_INET6;
  long6.sin6_port = htons(address.port);
  if (six) inet_pton(AF_INET6, address.host.substr(1, address.host.size() - 2).c_str(), &long6.sin6_addr);
  const auto* name = six ? reinterpret_cast<const sockaddr*>(&long6) : reinterpret_cast<const sockaddr*>(&four);
  return bind(probe.Handle(), name, six ? sizeof long6 : sizeof four) != 0 ? errno : 0;
}

}  // namespace

base::File ListenForNginx(const std::filesystem::path& path, int queue) {
  base::File listening(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  sockaddr_un name{};
  name.sun_family = AF_UNIX;
  path.native().copy(name.sun_path, sizeof name.sun_path - 1);
  unlink(path.c_str());
  if (!listening || bind(listening.Handle(), reinterpret_cast<sockaddr*>(&name), sizeof name) != 0 ||
      chmod(path.c_str(), 0660) != 0 || listen(listening.Handle(), queue) != 0) {
    throw host::SettingError("the socket " + path.string() + " cannot be made: " + std::strerror(errno));
  }
  return listening;
}

void ChangeQueue(int socket, int queue) { listen(socket, queue); }

void CheckAddressIsFree(const std::string& listen) {
  const Address address = *ParseAddress(listen);
  if (const int failed = TryToBind(address)) {
    throw host::SettingError("nothing can listen on " + listen + ": " + std::strerror(failed) +
                             "; another port is set with --listen");
  }
}

}  // namespace kalvo::web
