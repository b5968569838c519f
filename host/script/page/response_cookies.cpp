#include "host/script/page/response_cookies.h"

#include <algorithm>
#include <cmath>
#include <ctime>

#include "kalvo/platform/append.h"
#include "kalvo/platform/encoding.h"
#include "kalvo/platform/error.h"

namespace kalvo::host {
namespace {

constexpr double kUnixEpochSerial = 25569;  // 1970-01-01
constexpr std::size_t kMostCookies = 100;

// A local moment as headers have it: "Wed, 21 Oct 2015 07:28:00 GMT".
std::string HeaderDate(Date date) {
  if (!std::isfinite(date.serial) || std::fabs(date.serial) > 2958465) throw TypeMismatch();
  const auto asIfUtc = static_cast<std::time_t>(std::llround((date.serial - kUnixEpochSerial) * 86400));
  std::tm local{};
  gmtime_r(&asIfUtc, &local);
  local.tm_isdst = -1;
  const std::time_t moment = std::mktime(&local);
  std::tm utc{};
  gmtime_r(&moment, &utc);
  char text[64];
  return {text, std::strftime(text, sizeof text, "%a, %d %b %Y %H:%M:%S GMT", &utc)};
}

}  // namespace

bool IsHeaderName(std::string_view name) {
  constexpr std::string_view kMarks = "!#$%&'*+-.^_`|~";
  return !name.empty() && std::all_of(name.begin(), name.end(), [&](char c) {
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    return letter || kMarks.find(c) != std::string::npos;
  });
}

void ResponseCookie::RequireOpen() const {
  if (*isClosed_) throw Error(codes::kFailed, "The headers are sent already");
}

void ResponseCookie::SetValue(std::string_view value) {
  RequireOpen();
  value_ = std::string(value);
}

void ResponseCookie::SetPath(std::string_view path) {
  RequireOpen();
  const bool isFit = std::all_of(path.begin(), path.end(), [](char c) { return c > ' ' && c < 0x7F && c != ';'; });
  if (!path.starts_with('/') || !isFit) throw Error(codes::kFailed, "A cookie's path begins with / and has no blanks");
  path_ = std::string(path);
}

void ResponseCookie::SetMaxAge(std::int32_t seconds) {
  RequireOpen();
  maxAge_ = seconds;
}

void ResponseCookie::SetExpires(const Value& date) {
  RequireOpen();
  const auto* moment = std::get_if<Date>(&date);
  if (!moment) throw TypeMismatch();
  expires_ = HeaderDate(*moment);
}

void ResponseCookie::SetSecure(bool secure) {
  RequireOpen();
  secure_ = secure;
}

void ResponseCookie::SetHttpOnly(bool httpOnly) {
  RequireOpen();
  httpOnly_ = httpOnly;
}

std::string ResponseCookie::Header() const {
  return Built([&](std::string& out) {
    Append(out, name_, '=');
    AppendUrlEncoded(out, value_);
    Append(out, "; Path=", path_);
    if (maxAge_ >= 0) Append(out, "; Max-Age=", maxAge_);
    if (!expires_.empty()) Append(out, "; Expires=", expires_);
    if (secure_) Append(out, "; Secure");
    if (httpOnly_) Append(out, "; HttpOnly");
    Append(out, "; SameSite=Lax");
  });
}

std::shared_ptr<ResponseCookie> ResponseCookies::Item(std::string_view name) {
  const auto known = places_.find(name);
  if (known != places_.end()) return cookies_[known->second];
  if (!IsHeaderName(name)) throw Error(codes::kFailed, "A cookie's name holds letters, digits, \"-\" and \"_\"");
  if (cookies_.size() >= kMostCookies) throw Error(codes::kFailed, "A page sets at most 100 cookies");
  places_.emplace(name, cookies_.size());
  return cookies_.emplace_back(std::make_shared<ResponseCookie>(std::string(name), isClosed_));
}

void ResponseCookies::AppendHeaders(NamedTexts& headers) const {
  for (const auto& cookie : cookies_) headers.emplace_back("Set-Cookie", cookie->Header());
}

}  // namespace kalvo::host
