#include "host/web/login/password.h"

#include <sodium.h>

#include <algorithm>
#include <new>
#include <stdexcept>

#include "base/random_bytes.h"
#include "kalvo/platform/text_tools.h"

namespace kalvo::web::login {
namespace {

constexpr std::size_t kTokenBytes = 32;
constexpr std::string_view kHashPrefix = crypto_pwhash_argon2id_STRPREFIX;

void Prepare() {
  if (sodium_init() < 0) throw std::runtime_error("the cryptography library cannot be used");
}

}  // namespace

std::string HashPassword(std::string_view password) {
  Prepare();
  char hash[crypto_pwhash_STRBYTES];
  if (crypto_pwhash_str(hash, password.data(), password.size(), crypto_pwhash_OPSLIMIT_INTERACTIVE,
                        crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0) {
    throw std::bad_alloc();
  }
  return hash;
}

bool PasswordFits(std::string_view hash, std::string_view password) {
  Prepare();
  // The library wants an ended text; a longer one than it makes is not a hash.
  if (!IsPasswordHash(hash) || password.size() > kLongestPassword) return false;
  const std::string ended(hash);
  return crypto_pwhash_str_verify(ended.c_str(), password.data(), password.size()) == 0;
}

void PretendToCheck(std::string_view password) { PasswordFits(kNobodysHash, password); }

bool IsPasswordHash(std::string_view text) {
  return text.size() < crypto_pwhash_STRBYTES && text.starts_with(kHashPrefix) &&
         std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c < 0x7f; });
}

std::string NewToken() { return base::RandomName(kTokenBytes); }

bool IsToken(std::string_view text) { return text.size() == 2 * kTokenBytes && IsHexadecimal(text); }

std::string Fingerprint(std::string_view text) {
  Prepare();
  std::uint8_t bytes[kTokenBytes];
  crypto_generichash(bytes, sizeof bytes, reinterpret_cast<const unsigned char*>(text.data()), text.size(), nullptr, 0);
  return Hexadecimal(bytes);
}

}  // namespace kalvo::web::login
