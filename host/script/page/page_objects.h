#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "host/script/engine/script_value.h"
#include "host/script/page/page_paths.h"
#include "host/script/page/page_session.h"
#include "host/script/page/request.h"
#include "host/script/page/response.h"
#include "host/script/page/site.h"

namespace kalvo::host {

// The page's `Server`.
class ServerObject : public Server {
 public:
  bool SeesCalls() const override { return false; }

  using Maker = std::function<std::shared_ptr<Object>(std::string_view name)>;

  ServerObject(PagePlace place, Maker make) : place_(std::move(place)), make_(std::move(make)) {}

  void HTMLEncode(std::string& out, std::string_view text) override;
  void URLEncode(std::string& out, std::string_view text) override;
  std::string EncodedHtml(std::string_view text);
  std::string EncodedUrl(std::string_view text);

  // The file of a path: "/a.asp" from the root, "a.asp" from the page's folder. Fails for one outside of the root.
  std::string MapPath(std::string_view path) const;

  // Makes an object of a public class and tells it of the page's start; the page tells it of its end.
  std::shared_ptr<Object> CreateObject(std::string_view name) { return make_(name); }

 private:
  PagePlace place_;
  Maker make_;
};

// The page's `Session`.
class SessionObject : public Session {
 public:
  bool SeesCalls() const override { return false; }

  // What is given outlives this object.
  SessionObject(Engine& engine, PageSession& session, std::span<const ScriptStatic> statics)
      : engine_(engine), session_(session), declared_(statics) {}

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
  void PushStatic(std::string_view name);

  Engine& engine_;
  PageSession& session_;
  std::span<const ScriptStatic> declared_;
  std::map<std::string, std::unique_ptr<ScriptReference>> statics_;  // made so far, by the name in lower case
  std::shared_ptr<LiveContainer> driller_;
  bool drillerAsked_ = false;
  std::map<std::string, std::shared_ptr<Object>> hostObjects_;  // asked for so far, by the name in lower case
};

// The page's `ScriptingContext`.
class ScriptingContextObject : public ScriptingContext {
 public:
  ScriptingContextObject(std::shared_ptr<Request> request, std::shared_ptr<Response> response,
                         std::shared_ptr<Server> server, std::shared_ptr<Session> session)
      : request_(std::move(request)),
        response_(std::move(response)),
        server_(std::move(server)),
        session_(std::move(session)) {}

  std::shared_ptr<Response> GetResponse() override { return response_; }
  std::shared_ptr<Request> GetRequest() override { return request_; }
  std::shared_ptr<Session> GetSession() override { return session_; }
  std::shared_ptr<Server> GetServer() override { return server_; }

 private:
  std::shared_ptr<Request> request_;
  std::shared_ptr<Response> response_;
  std::shared_ptr<Server> server_;
  std::shared_ptr<Session> session_;
};

}  // namespace kalvo::host
