#include "host/web/log.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>

#include "host/parts/setting_error.h"
#include "platform/append.h"

namespace kalvo::web {
namespace {

constexpr char kHex[] = "0123456789ABCDEF";

void AppendPrintable(std::string& out, std::string_view text) {
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte < 0x20 || byte == 0x7F) {
      Append(out, "\\x", kHex[byte >> 4], kHex[byte & 15]);
    } else {
      out += character;
    }
  }
}

void AppendNow(std::string& out) {
  const std::time_t now = std::time(nullptr);
  std::tm calendar{};
  localtime_r(&now, &calendar);
  char text[32];
  out.append(text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &calendar));
}

}  // namespace

Log::Log(std::string file) : file_(std::move(file)) { Reopen(); }

Log::~Log() {
  if (descriptor_ > STDERR_FILENO) close(descriptor_);
}

void Log::Write(std::string_view text) const {
  std::string line;
  AppendNow(line);
  Append(line, " [", static_cast<int>(getpid()), "] ");
  AppendPrintable(line, text);
  line += '\n';
  // A log that cannot be written is no reason to stop serving.
  if (write(descriptor_, line.data(), line.size()) < 0) return;
}

void Log::Reopen() {
  if (file_ == "-") {
    descriptor_ = STDERR_FILENO;
    return;
  }
  const int opened = open(file_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0640);
  if (opened < 0) throw host::SettingError("the log " + file_ + " cannot be written: " + std::strerror(errno));
  if (descriptor_ > STDERR_FILENO) close(descriptor_);
  descriptor_ = opened;
}

}  // namespace kalvo::web
