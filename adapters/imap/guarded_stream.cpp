#include <cstdlib>
#include <new>

#include "adapters/imap/imap_session.h"
#include "adapters/imap/response_guard.h"
#include "adapters/imap/transport.h"

namespace kalvo::imap {

namespace {

constexpr std::size_t kBufferBytes = 16384;

struct Ends {
  Transport& transport;
  ResponseGuard& guard;
};

Ends& EndsOf(mailstream_low* low) { return *static_cast<Ends*>(low->data); }

ssize_t Read(mailstream_low* low, void* buffer, std::size_t size) {
  auto& ends = EndsOf(low);
  auto* bytes = static_cast<char*>(buffer);
  if (!ends.guard.Refusal().empty()) return -1;
  const auto count = ends.transport.Read(bytes, size);
  if (count <= 0) return -1;
  return ends.guard.Accept({bytes, static_cast<std::size_t>(count)}) ? count : -1;
}

ssize_t Write(mailstream_low* low, const void* buffer, std::size_t size) {
  return EndsOf(low).transport.Write(static_cast<const char*>(buffer), size);
}

int Close(mailstream_low*) { return 0; }
int Descriptor(mailstream_low* low) { return EndsOf(low).transport.Descriptor(); }
void Nothing(mailstream_low*) {}

void Free(mailstream_low* low) {
  delete static_cast<Ends*>(low->data);
  std::free(low);
}

mailstream_low_driver kDriver = {Read,    Write,   Close,   Descriptor, Free,   Nothing,
                                 nullptr, nullptr, nullptr, nullptr,    nullptr};

}  // namespace

mailstream* NewGuardedStream(Transport& transport, ResponseGuard& guard) {
  auto* low = mailstream_low_new(new Ends{transport, guard}, &kDriver);
  if (!low) throw std::bad_alloc();
  auto* stream = mailstream_new(low, kBufferBytes);
  if (!stream) throw std::bad_alloc();
  return stream;
}

}  // namespace kalvo::imap
