#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/script/engine/script_value.h"
#include "host/script/page/page_request.h"

namespace kalvo::host {

// Whether a header or a cookie may have the name: letters, digits and a few marks.
bool IsHeaderName(std::string_view name);

// A cookie that the page's response sets. Each of its properties fails once the head is sent.
class ResponseCookie : public TextObject {
 public:
  ResponseCookie(std::string name, std::shared_ptr<const bool> isClosed)
      : name_(std::move(name)), isClosed_(std::move(isClosed)) {}

  std::string Text() const override { return value_; }

  // Any text: it is encoded, and `Request.Cookies` decodes it.
  void SetValue(std::string_view value);

  // The path below which browsers send it back; "/" at first.
  std::string Path() const { return path_; }
  void SetPath(std::string_view path);

  // How long browsers keep it, in seconds; with less than 0, as at first, until they are closed.
  std::int32_t MaxAge() const { return maxAge_; }
  void SetMaxAge(std::int32_t seconds);

  // The same as a moment: a date.
  void SetExpires(const Value& date);

  // Over encrypted connections only, and out of the reach of scripts: the latter holds at first.
  bool Secure() const { return secure_; }
  void SetSecure(bool secure);
  bool HttpOnly() const { return httpOnly_; }
  void SetHttpOnly(bool httpOnly);

  // The header's text.
  std::string Header() const;

 private:
  void RequireOpen() const;

  std::string name_, value_, path_ = "/", expires_;
  std::int32_t maxAge_ = -1;
  bool secure_ = false, httpOnly_ = true;
  std::shared_ptr<const bool> isClosed_;
};

// `Response.Cookies`: the cookies by their names, which are matched as they are spelled.
class ResponseCookies : public Object {
 public:
  // Made when it is first asked for. Fails for a name that cannot stand in a header.
  std::shared_ptr<ResponseCookie> Item(std::string_view name);

  void AppendHeaders(NamedTexts& headers) const;

  // The head is sent: nothing changes any more.
  void Close() { *isClosed_ = true; }

 private:
  std::shared_ptr<bool> isClosed_ = std::make_shared<bool>(false);
  std::vector<std::shared_ptr<ResponseCookie>> cookies_;  // in the order of their making
  std::map<std::string, std::size_t, std::less<>> places_;
};

}  // namespace kalvo::host
