#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host/script/request.h"
#include "host/script/response.h"
#include "host/script/script_value.h"

namespace kalvo::host {

class ScriptPage;

// The page's `Server`.
class ServerObject : public Server {
 public:
  explicit ServerObject(ScriptPage& page) : page_(page) {}

  void HTMLEncode(std::string& out, std::string_view text) override;
  void URLEncode(std::string& out, std::string_view text) override;
  std::string EncodedHtml(std::string_view text);
  std::string EncodedUrl(std::string_view text);

  // The file of a path: "/a.asp" from the root, "a.asp" from the page's folder. Fails for one outside of the root.
  std::string MapPath(std::string_view path) const;

  // Makes an object of a public class and tells it of the page's start; the page tells it of its end.
  std::shared_ptr<Object> CreateObject(std::string_view name);

 private:
  ScriptPage& page_;
};

// The page's `Session`.
class SessionObject : public Session {
 public:
  SessionObject(ScriptPage& page, PageSession& session) : page_(page), session_(session) {}

  Value Item(std::string_view name) override { return session_.Get(name); }
  std::shared_ptr<LiveContainer> StaticObject(std::string_view name) override;

  // `Session.Value(name)` reads; with a second argument it writes. Objects are not kept: they fail with 13, as
  // a date that is none does.
  Value Access(std::string_view name, std::optional<Value> value);

  // What `Session.StaticObjects(name)` is to a script; empty when there is none of that name.
  Value Static(std::string_view name);
  void Abandon() { session_.Abandon(); }

  // Tokens of forms that act; `PageSession` has them.
  std::string NewToken(std::string_view purpose) { return session_.NewToken(purpose); }
  bool TakeToken(std::string_view purpose, std::string_view token) { return session_.TakeToken(purpose, token); }
  void NoteRefusal(std::string_view what) { session_.NoteRefusal(what); }

 private:
  // Leaves the static object of a name on the stack, undefined when there is none.
  void PushStatic(Engine& engine, std::string_view name);

  ScriptPage& page_;
  PageSession& session_;
  std::map<std::string, std::unique_ptr<ScriptReference>> statics_;  // made so far, by the name in lower case
  std::shared_ptr<LiveContainer> driller_;
  bool drillerAsked_ = false;
  std::map<std::string, std::shared_ptr<Object>> hostObjects_;  // asked for so far, by the name in lower case
};

// The page's `ScriptingContext`.
class ScriptingContextObject : public ScriptingContext {
 public:
  explicit ScriptingContextObject(ScriptPage& page) : page_(page) {}

  std::shared_ptr<Response> GetResponse() override;
  std::shared_ptr<Request> GetRequest() override;
  std::shared_ptr<Session> GetSession() override;
  std::shared_ptr<Server> GetServer() override;

 private:
  ScriptPage& page_;
};

}  // namespace kalvo::host
