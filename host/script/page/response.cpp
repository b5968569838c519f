#include "host/script/page/response.h"

#include <algorithm>
#include <charconv>

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

bool IsToken(std::string_view name) {
  constexpr std::string_view kMarks = "!#$%&'*+-.^_`|~";
  return !name.empty() && std::all_of(name.begin(), name.end(), [&](char c) {
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    return letter || kMarks.find(c) != std::string_view::npos;
  });
}

void RequireHeaderText(std::string_view text) {
  if (HoldsControl(text)) throw Error(codes::kFailed, "A header holds no line breaks and no control characters");
}

}  // namespace

void ResponseObject::RequireHead() const {
  if (headSent_) throw Error(codes::kFailed, "The headers are sent already");
}

void ResponseObject::Write(std::string_view text) {
  engine_.CheckLimits();
  engine_.Charge(static_cast<std::ptrdiff_t>(text.size()));
  buffer_ += text;
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
    if (!buffer_.empty()) sink_.Body(buffer_);
  } catch (...) {  // no engine code runs in a sink: whatever it throws is its own
    sinkFailure_ = std::current_exception();
  }
  if (sinkFailure_ != nullptr) engine_.End(EndCause::Sink);
}

void ResponseObject::Clear() {
  engine_.Charge(-static_cast<std::ptrdiff_t>(buffer_.size()));
  buffer_.clear();
}

void ResponseObject::Redirect(std::string_view url) {
  RequireHead();
  RequireHeaderText(url);
  Clear();
  head_.status = 302;
  head_.reason = "Found";
  head_.headers.emplace_back("Location", url);
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
  if (!IsToken(name)) throw Error(codes::kFailed, "A header's name holds letters, digits and hyphens");
  RequireHeaderText(value);
  if (EqualsIgnoringAsciiCase(name, "Content-Type")) return SetContentType(value);
  head_.headers.emplace_back(name, value);
}

PageHead ResponseObject::Head() const {
  PageHead head = head_;
  head.contentType = contentType_;
  const std::string lower = ToLowerAscii(contentType_);
  if (lower.starts_with("text/") && lower.find("charset") == std::string::npos) head.contentType += "; charset=utf-8";
  return head;
}

}  // namespace kalvo::host
