#include "host/script/page/response.h"

#include <algorithm>
#include <charconv>

#include "base/percent.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::host {
namespace {

bool HoldsControl(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte < 0x20 && byte != '\t') || byte == 0x7F;
  });
}

void RequireHeaderText(std::string_view text) {
  if (HoldsControl(text)) throw Error(codes::kFailed, "A header holds no line breaks and no control characters");
}

// What says where a response ends, and how the connection goes on.
constexpr std::string_view kSendersOwn[] = {"Content-Length", "Transfer-Encoding", "Connection"};

// An address with what cannot stand in one as "%XX": blanks, quotation marks and every byte beyond ASCII.
std::string InAddress(std::string_view url) {
  constexpr std::string_view kNever = " \"<>\\^`{|}";
  return Built([&](std::string& out) {
    for (const char c : url) {
      const auto byte = static_cast<unsigned char>(c);
      if (byte < 0x80 && kNever.find(c) == std::string::npos && c != '\t') {
        out += c;
      } else {
        base::AppendPercent(out, c);
      }
    }
  });
}

}  // namespace

void ResponseObject::RequireHead() const {
  if (headSent_) throw Error(codes::kFailed, "The headers are sent already");
}

void ResponseObject::Write(std::string_view text) {
  engine_.CheckLimits();
  engine_.Charge(static_cast<std::ptrdiff_t>(text.size()));
  buffer_ += text;
  if (!buffers_) Flush();
}

void ResponseObject::Flush() {
  engine_.CheckLimits();
  Send();
  Clear();
}

void ResponseObject::Send() {
  try {
    if (!headSent_) sink_.Head(Head());
    headSent_ = true;
    cookies_->Close();
    if (!buffer_.empty()) sink_.Body(buffer_);
  } catch (...) {  // no engine code runs in a sink: whatever it throws is its own
    sinkFailure_ = std::current_exception();
  }
  if (sinkFailure_) engine_.End(EndCause::Sink);
}

void ResponseObject::Clear() {
  engine_.Charge(-static_cast<std::ptrdiff_t>(buffer_.size()));
  buffer_.clear();
}

void ResponseObject::Redirect(std::string_view url) {
  RequireHead();
  RequireHeaderText(url);
  if (url.empty()) throw Error(codes::kFailed, "The address to redirect to is missing");
  Clear();
  head_.status = 302;
  head_.reason = "Found";
  head_.headers.emplace_back("Location", InAddress(url));
  End();
}

std::string ResponseObject::Status() const {
  return Built([&](std::string& out) { Append(out, head_.status, ' ', head_.reason); });
}

void ResponseObject::SetStatus(std::string_view status) {
  RequireHead();
  RequireHeaderText(status);
  int code = 0;
  const auto [end, problem] = std::from_chars(status.data(), status.data() + status.size(), code);
  const std::string_view rest(end, static_cast<std::size_t>(status.data() + status.size() - end));
  const bool valid = problem == std::errc() && code >= 200 && code <= 599 && (rest.empty() || rest.front() == ' ');
  if (!valid) throw Error(codes::kFailed, "A status is a number from 200 to 599 and a text, such as \"404 Not Found\"");
  head_.status = code;
  head_.reason = std::string(rest.substr(rest.empty() ? 0 : 1));
}

void ResponseObject::SetContentType(std::string_view type) {
  RequireHead();
  RequireHeaderText(type);
  contentType_ = std::string(type);
}

void ResponseObject::AddHeader(std::string_view name, std::string_view value) {
  RequireHead();
  if (!IsHeaderName(name)) throw Error(codes::kFailed, "A header's name holds letters, digits and hyphens");
  for (const std::string_view own : kSendersOwn) {
    if (!EqualsIgnoringAsciiCase(name, own)) continue;
    throw Error(codes::kFailed, Built([&](std::string& out) { Append(out, own, " is set by the server alone"); }));
  }
  RequireHeaderText(value);
  if (EqualsIgnoringAsciiCase(name, "Content-Type")) return SetContentType(value);
  head_.headers.emplace_back(name, value);
}

void ResponseObject::SetCacheControl(std::string_view text) {
  RequireHead();
  RequireHeaderText(text);
  cacheControl_ = std::string(text);
}

void ResponseObject::SetExpires(std::int32_t minutes) {
  constexpr std::int32_t kLongest = 365 * 24 * 60;
  expires_ = std::min(minutes, kLongest);
  SetCacheControl(Built([&](std::string& out) {
    if (minutes > 0) {
      Append(out, "private, max-age=", expires_ * 60);
    } else {
      out = "no-store";
    }
  }));
}

void ResponseObject::SetCharset(std::string_view name) {
  if (EqualsIgnoringAsciiCase(name, "utf-8")) return;
  throw Error(codes::kFailed, "A page is sent as UTF-8");
}

PageHead ResponseObject::Head() const {
  PageHead head = head_;
  if (!cacheControl_.empty()) head.headers.emplace_back("Cache-Control", cacheControl_);
  cookies_->AppendHeaders(head.headers);
  head.contentType = contentType_;
  const std::string lower = ToLowerAscii(contentType_);
  if (lower.starts_with("text/") && lower.find("charset") == std::string::npos) head.contentType += "; charset=utf-8";
  return head;
}

}  // namespace kalvo::host
