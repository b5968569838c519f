#include "host/web/acting/tokens.h"

#include <fcntl.h>
#include <sodium.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <optional>

#include "base/file.h"
#include "base/fresh_file.h"
#include "base/private_folder.h"
#include "base/random_bytes.h"
#include "host/parts/setting_error.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/text_tools.h"

namespace kalvo::web {
namespace {

namespace fs = std::filesystem;
using host::SettingError;

// A token is a head of 128 random bits and the moment of its end, and a code over that: all hexadecimal digits.
constexpr std::size_t kNonceDigits = 32, kEndDigits = 16, kHeadDigits = kNonceDigits + kEndDigits;
constexpr std::size_t kCodeDigits = 2 * crypto_auth_BYTES;
constexpr const char* kSecret = "secret";
constexpr std::int64_t kPeriod = Tokens::kLifetime;  // the taken tokens of a period lie in one folder

static_assert(crypto_auth_KEYBYTES == 32);

std::string EndText(std::int64_t end) {
  std::uint8_t bytes[8];
  for (int i = 0; i < 8; ++i) bytes[i] = static_cast<std::uint8_t>(end >> (8 * (7 - i)));
  return Hexadecimal(bytes);
}

std::optional<std::int64_t> EndOf(std::string_view head) {
  std::int64_t end = 0;
  const char* digits = head.data() + kNonceDigits;
  if (std::from_chars(digits, digits + kEndDigits, end, 16).ptr != digits + kEndDigits) return std::nullopt;
  return end;
}

[[noreturn]] void Fail(const fs::path& path) {
  const int error = errno;
  throw SettingError("the tokens of forms, " + path.string() + ": " + std::strerror(error));
}

// Whoever comes first makes the secret, whole or not at all.
void MakeSecret(const fs::path& folder, const std::string& name) {
  std::uint8_t bytes[crypto_auth_KEYBYTES];
  randombytes_buf(bytes, sizeof bytes);
  const base::File top = base::Open(folder, O_RDONLY | O_DIRECTORY);
  if (!base::MakeOnce(top, name, {reinterpret_cast<const char*>(bytes), sizeof bytes})) Fail(folder / name);
}

fs::path PeriodOf(const fs::path& folder, std::int64_t end) {
  return folder / ("taken-" + std::to_string(end / kPeriod));
}

}  // namespace

Tokens::Tokens(fs::path folder) : folder_(std::move(folder)) {
  if (sodium_init() < 0) throw std::runtime_error("the cryptography library cannot be used");
  const std::string wrong = base::MakePrivateFolder(folder_);
  if (!wrong.empty()) throw SettingError("the tokens of forms, " + folder_.string() + ": " + wrong);
  const fs::path path = folder_ / kSecret;
  if (!fs::exists(path)) MakeSecret(folder_, kSecret);
  const base::File file = base::Open(path, O_RDONLY | O_NOFOLLOW);
  if (!file) Fail(path);
  const auto secret = base::ReadAll(file, secret_.size());
  if (!secret || secret->size() != secret_.size()) {
    throw SettingError("the tokens of forms: " + path.string() + " is not a secret; remove it, and one is made");
  }
  std::copy(secret->begin(), secret->end(), secret_.begin());
}

std::string Tokens::CodeOf(std::string_view session, std::string_view purpose, std::string_view head) const {
  // Each part says how long it is, so that no two lists of parts make one text.
  std::string text;
  for (const std::string_view part : {head, session, purpose}) Append(text, part.size(), ':', part);
  std::uint8_t code[crypto_auth_BYTES];
  crypto_auth(code, reinterpret_cast<const unsigned char*>(text.data()), text.size(), secret_.data());
  return Hexadecimal(code);
}

std::string Tokens::New(std::string_view session, std::string_view purpose, std::int64_t now) const {
  const std::string head = base::RandomName(kNonceDigits / 2) + EndText(now + kLifetime);
  return head + CodeOf(session, purpose, head);
}

bool Tokens::Take(std::string_view session, std::string_view purpose, std::string_view token, std::int64_t now) const {
  if (token.size() != kHeadDigits + kCodeDigits || !IsHexadecimal(token)) return false;
  const std::string_view head = token.substr(0, kHeadDigits), code = token.substr(kHeadDigits);
  const std::string right = CodeOf(session, purpose, head);
  if (sodium_memcmp(right.data(), code.data(), kCodeDigits) != 0) return false;
  const auto end = EndOf(head);
  if (!end || now >= *end) return false;
  Sweep(now);
  const fs::path period = PeriodOf(folder_, *end);
  std::error_code failed;
  fs::create_directory(period, failed);
  const fs::path taken = period / head.substr(0, kNonceDigits);
  const base::File file = base::Open(taken, O_CREAT | O_EXCL | O_WRONLY | O_NOFOLLOW);
  if (!file && errno == EEXIST) return false;
  if (!file || fsync(file.Handle()) != 0) {
    throw SettingError(std::string("the token of a form cannot be kept: ") + std::strerror(errno));
  }
  return true;
}

void Tokens::Sweep(std::int64_t now) const {
  std::error_code failed;
  for (const auto& entry : fs::directory_iterator(folder_, failed)) {
    const std::string name = entry.path().filename().string();
    std::int64_t period = 0;
    if (!name.starts_with("taken-")) continue;
    const char* end = name.data() + name.size();
    if (std::from_chars(name.data() + 6, end, period).ptr != end) continue;
    if ((period + 1) * kPeriod <= now) fs::remove_all(entry.path(), failed);
  }
}

}  // namespace kalvo::web
