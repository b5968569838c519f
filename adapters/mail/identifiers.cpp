#include "adapters/mail/identifiers.h"

#include <bit>
#include <cstddef>
#include <optional>
#include <tuple>

#include "adapters/mail/errors.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::mail {

namespace {

constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
constexpr std::size_t kCheckBytes = std::tuple_size_v<CheckValue>;
constexpr std::size_t kLongestIdentifier = 4096;
constexpr char kFolderKind = 'f', kMessageKind = 'm';

std::uint64_t Word(const std::uint8_t* bytes, std::size_t count = 8) {
  std::uint64_t word = 0;
  for (std::size_t i = 0; i < count; ++i) word |= std::uint64_t{bytes[i]} << (8 * i);
  return word;
}

struct SipState {
  std::uint64_t a, b, c, d;

  void Round() {
    a += b, b = std::rotl(b, 13) ^ a, a = std::rotl(a, 32);
    c += d, d = std::rotl(d, 16) ^ c;
    a += d, d = std::rotl(d, 21) ^ a;
    c += b, b = std::rotl(b, 17) ^ c, c = std::rotl(c, 32);
  }

  void Take(std::uint64_t word) {
    d ^= word;
    Round(), Round();
    a ^= word;
  }
};

void AppendLength(std::string& out, std::size_t length) {
  for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>((length >> shift) & 0xFF);
}

void AppendPart(std::string& out, std::string_view part) {
  AppendLength(out, part.size());
  out += part;
}

std::string Encode(std::string_view bytes) {
  std::string text;
  std::uint32_t bits = 0;
  int held = 0;
  for (const char byte : bytes) {
    bits = (bits << 8) | static_cast<std::uint8_t>(byte);
    for (held += 8; held >= 6; held -= 6) text += kDigits[(bits >> (held - 6)) & 63];
  }
  if (held > 0) text += kDigits[(bits << (6 - held)) & 63];
  return text;
}

// Nothing for a text that `Encode` never makes, so that no two identifiers mean the same.
std::optional<std::string> Decode(std::string_view text) {
  std::string bytes;
  std::uint32_t bits = 0;
  int held = 0;
  for (const char digit : text) {
    const std::size_t value = kDigits.find(digit);
    if (value == std::string::npos) return std::nullopt;
    bits = (bits << 6) | static_cast<std::uint32_t>(value);
    held += 6;
    if (held >= 8) {
      held -= 8;
      bytes += static_cast<char>((bits >> held) & 0xFF);
    }
  }
  if (Encode(bytes) != text) return std::nullopt;
  return bytes;
}

CheckValue Check(const Binding& binding, char kind, std::string_view payload) {
  std::string bound(1, kind);
  AppendPart(bound, ToLower(binding.server));
  AppendPart(bound, binding.mailbox);
  AppendPart(bound, payload);
  return KeyedHash(binding.key, bound);
}

// Takes the same time wherever the first difference is.
bool IsSame(const CheckValue& check, std::string_view bytes) {
  unsigned difference = 0;
  for (std::size_t i = 0; i < kCheckBytes; ++i) difference |= check[i] ^ static_cast<std::uint8_t>(bytes[i]);
  return difference == 0;
}

std::string Issue(const Binding& binding, char kind, std::string_view payload) {
  const CheckValue check = Check(binding, kind, payload);
  std::string bytes(check.begin(), check.end());
  bytes += payload;
  return Encode(bytes);
}

std::string Read(const Binding& binding, char kind, std::string_view identifier) {
  if (identifier.size() <= kLongestIdentifier) {
    const auto bytes = Decode(identifier);
    if (bytes && bytes->size() >= kCheckBytes) {
      std::string payload = bytes->substr(kCheckBytes);
      if (IsSame(Check(binding, kind, payload), *bytes)) return payload;
    }
  }
  throw NoSuchFolder("The identifier was not issued for this mailbox.");
}

}  // namespace

CheckValue KeyedHash(const IdentifierKey& key, std::string_view bytes) {
  const auto* at = reinterpret_cast<const std::uint8_t*>(bytes.data());
  const std::uint64_t first = Word(key.data()), second = Word(key.data() + 8);
  SipState state{first ^ 0x736f6d6570736575, second ^ 0x646f72616e646f6d ^ 0xEE, first ^ 0x6c7967656e657261,
                 second ^ 0x7465646279746573};
  std::size_t left = bytes.size();
  for (; left >= 8; left -= 8, at += 8) state.Take(Word(at));
  state.Take((std::uint64_t{bytes.size() & 0xFF} << 56) | Word(at, left));
  CheckValue check{};
  state.c ^= 0xEE;
  for (std::size_t half = 0; half < kCheckBytes; half += 8) {
    if (half > 0) state.b ^= 0xDD;
    for (int i = 0; i < 4; ++i) state.Round();
    const std::uint64_t word = state.a ^ state.b ^ state.c ^ state.d;
    for (std::size_t i = 0; i < 8; ++i) check[half + i] = static_cast<std::uint8_t>(word >> (8 * i));
  }
  return check;
}

std::string FolderIdentifier(const Binding& binding, std::string_view folder) {
  return Issue(binding, kFolderKind, folder);
}

std::string MessageIdentifier(const Binding& binding, std::string_view folder, std::string_view message) {
  std::string payload;
  payload += static_cast<char>(folder.size() >> 8);
  payload += static_cast<char>(folder.size() & 0xFF);
  payload += folder;
  payload += message;
  return Issue(binding, kMessageKind, payload);
}

std::string ReadFolderIdentifier(const Binding& binding, std::string_view identifier) {
  return Read(binding, kFolderKind, identifier);
}

MessageKeys ReadMessageIdentifier(const Binding& binding, std::string_view identifier) {
  const std::string payload = Read(binding, kMessageKind, identifier);
  const std::size_t length =
      static_cast<std::size_t>(static_cast<std::uint8_t>(payload[0])) << 8 | static_cast<std::uint8_t>(payload[1]);
  return {payload.substr(2, length), payload.substr(2 + length)};
}

}  // namespace kalvo::mail
