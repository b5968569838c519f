#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kalvo/platform/value.h"

namespace kalvo {

class LiveContainer;

// What a page host gives a page. A page may have objects of its own in its place.
class PageObject : public Object {
 public:
  // Whether somebody can tell how often, in which order and with what it is asked, as the page's own objects can: each
  // call is then made as it is published. One that sees no calls is asked as seldom as will do, and what is written to
  // it comes in larger pieces.
  virtual bool SeesCalls() const { return true; }
};

// Where a page's HTML goes.
class Response : public PageObject {
 public:
  // Appends text to the page. The text is written as it is.
  virtual void Write(std::string_view text) = 0;

  // Sends what was written so far.
  virtual void Flush() = 0;
};

// What the page was asked for. Keys are matched without regard to case; text is decoded, well-formed UTF-8.
class Request : public PageObject {
 public:
  // The keys of the query string, each once, in the order of first appearance, spelled as they first came.
  virtual std::vector<std::string> QueryKeys() = 0;

  // How many values the query string has for the key; 0 when it is absent.
  virtual std::int32_t QueryCount(std::string_view key) = 0;

  // Value i of the key, from 1 to its count. Fails outside of that.
  virtual std::string QueryItem(std::string_view key, std::int32_t i) = 0;

  // All values of the key joined by ", "; "" when it is absent.
  virtual std::string QueryText(std::string_view key) = 0;

  // A server variable, such as "URL" or "LOGON_USER"; "" when it is not set.
  virtual std::string ServerVariable(std::string_view name) = 0;

  // The first of query string, form, cookies and server variables that has the name, as text; "" when none has.
  virtual std::string Item(std::string_view name) = 0;
};

// The page host's encoders. Both append. One that sees no calls encodes as `AppendHtmlEncoded` and `AppendUrlEncoded`
// do, and need not be asked at all.
class Server : public PageObject {
 public:
  virtual void HTMLEncode(std::string& out, std::string_view text) = 0;
  virtual void URLEncode(std::string& out, std::string_view text) = 0;
};

// What the page host keeps for one user from page to page.
class Session : public PageObject {
 public:
  // A value by name; empty when nobody set it.
  virtual Value Item(std::string_view name) = 0;

  // An object that the application declares for each session. Fails with 424 when there is none of that name.
  virtual std::shared_ptr<LiveContainer> StaticObject(std::string_view name) = 0;
};

// The four objects of the page that is running. Never answers null.
class ScriptingContext : public Object {
 public:
  virtual std::shared_ptr<Response> GetResponse() = 0;
  virtual std::shared_ptr<Request> GetRequest() = 0;
  virtual std::shared_ptr<Session> GetSession() = 0;
  virtual std::shared_ptr<Server> GetServer() = 0;
};

}  // namespace kalvo
