#include "host/web/acting/tokens.h"

#include <fcntl.h>
#include <sodium.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <optional>

#include "host/parts/setting_error.h"
#include "kalvo/platform/append.h"

namespace kalvo::web {
namespace {

namespace fs = std::filesystem;
using host::SettingError;

// A token is a head of 128 random bits and the moment of its end, and a code over that: all hexadecimal digits.
constexpr std::size_t kNonceDigits = 32, kEndDigits = 16, kHeadDigits = kNonceDigits + kEndDigits;
constexpr std::size_t kCodeDigits = 2 * crypto_auth_BYTES;
constexpr std::int64_t kPeriod = Tokens::kLifetime;  // the taken tokens of a period lie in one folder

static_assert(crypto_auth_KEYBYTES == 32);

template <std::size_t N>
std::string Hexadecimal(const unsigned char (&bytes)[N]) {
  char digits[2 * N + 1];
  sodium_bin2hex(digits, sizeof digits, bytes, N);
  return digits;
}

std::string EndText(std::int64_t end) {
  unsigned char bytes[8];
  for (int i = 0; i < 8; ++i) bytes[i] = static_cast<unsigned char>(end >> (8 * (7 - i)));
  return Hexadecimal(bytes);
}

std::optional<std::int64_t> EndOf(std::string_view head) {
  std::int64_t end = 0;
  const char* digits = head.data() + kNonceDigits;
  if (std::from_chars(digits, digits + kEndDigits, end, 16).ptr != digits + kEndDigits) return std::nullopt;
  return end;
}

bool AreDigits(std::string_view text) { return text.find_first_not_of("0123456789abcdef") == std::string_view::npos; }

[[noreturn]] void Fail(const fs::path& path) {
  const int error = errno;
  throw SettingError("the tokens of forms, " + path.string() + ": " + std::strerror(error));
}

class File {
 public:
  File(const fs::path& path, int flags) : file_(open(path.c_str(), flags | O_CLOEXEC | O_NOFOLLOW, 0600)) {}
  ~File() {
    if (file_ >= 0) close(file_);
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  int Get() const { return file_; }
  bool IsOpen() const { return file_ >= 0; }

 private:
  int file_;
};

// Whoever comes first makes the secret, whole or not at all.
void MakeSecret(const fs::path& path) {
  unsigned char bytes[crypto_auth_KEYBYTES];
  randombytes_buf(bytes, sizeof bytes);
  unsigned char name[8];
  randombytes_buf(name, sizeof name);
  const fs::path fresh = path.string() + '.' + Hexadecimal(name);
  const File file(fresh, O_CREAT | O_EXCL | O_WRONLY);
  const bool written = file.IsOpen() && write(file.Get(), bytes, sizeof bytes) == static_cast<ssize_t>(sizeof bytes) &&
                       fsync(file.Get()) == 0;
  const bool linked = written && (link(fresh.c_str(), path.c_str()) == 0 || errno == EEXIST);
  const int error = errno;
  unlink(fresh.c_str());
  errno = error;
  if (!linked) Fail(path);
}

fs::path PeriodOf(const fs::path& folder, std::int64_t end) {
  return folder / ("taken-" + std::to_string(end / kPeriod));
}

}  // namespace

Tokens::Tokens(fs::path folder) : folder_(std::move(folder)) {
  if (sodium_init() < 0) throw std::runtime_error("the cryptography library cannot be used");
  std::error_code failed;
  fs::create_directories(folder_, failed);
  if (!failed) fs::permissions(folder_, fs::perms::owner_all, failed);
  if (failed) throw SettingError("the tokens of forms, " + folder_.string() + ": " + failed.message());
  const fs::path path = folder_ / "secret";
  if (!fs::exists(path)) MakeSecret(path);
  const File file(path, O_RDONLY);
  if (!file.IsOpen()) Fail(path);
  if (read(file.Get(), secret_.data(), secret_.size()) != static_cast<ssize_t>(secret_.size())) {
    throw SettingError("the tokens of forms: " + path.string() + " is no secret; remove it, and one is made");
  }
}

std::string Tokens::CodeOf(std::string_view session, std::string_view purpose, std::string_view head) const {
  // Each part says how long it is, so that no two lists of parts make one text.
  std::string text;
  for (const std::string_view part : {head, session, purpose}) Append(text, part.size(), ':', part);
  unsigned char code[crypto_auth_BYTES];
  crypto_auth(code, reinterpret_cast<const unsigned char*>(text.data()), text.size(), secret_.data());
  return Hexadecimal(code);
}

std::string Tokens::New(std::string_view session, std::string_view purpose, std::int64_t now) const {
  unsigned char nonce[kNonceDigits / 2];
  randombytes_buf(nonce, sizeof nonce);
  const std::string head = Hexadecimal(nonce) + EndText(now + kLifetime);
  return head + CodeOf(session, purpose, head);
}

bool Tokens::Take(std::string_view session, std::string_view purpose, std::string_view token, std::int64_t now) const {
  if (token.size() != kHeadDigits + kCodeDigits || !AreDigits(token)) return false;
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
  const File file(taken, O_CREAT | O_EXCL | O_WRONLY);
  if (!file.IsOpen() && errno == EEXIST) return false;
  if (!file.IsOpen() || fsync(file.Get()) != 0) {
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
