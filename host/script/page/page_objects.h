#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

  ServerObject(SitePlace place, Maker make) : place_(std::move(place)), make_(std::move(make)) {}

  void HTMLEncode(std::string& out, std::string_view text) override;
  void URLEncode(std::string& out, std::string_view text) override;
  std::string EncodedHtml(std::string_view text);
  std::string EncodedUrl(std::string_view text);

  // The file of a path: "/a.asp" from the root, "a.asp" from the page's folder. Fails for one outside of the root.
  std::string MapPath(std::string_view path) const;

  // The text of a file below the site's root, named as for `MapPath`: UTF-8, and at most 16 MiB of it. Fails where
  // there is no such file, and for one that a link leads out of the site to.
  std::string ReadText(std::string_view path) const;

  // Makes an object of a public class and tells it of the page's start; the page tells it of its end.
  std::shared_ptr<Object> CreateObject(std::string_view name) { return make_(name); }

 private:
  SitePlace place_;
  Maker make_;
};

// A value of the session that can be assigned: what `Session(name) = v` stands for.
class SessionItem : public Object {
 public:
  SessionItem(PageSession& session, std::string name) : session_(session), name_(std::move(name)) {}

  Value Get() const { return session_.Get(name_); }
  void Set(const Value& value);

 private:
  PageSession& session_;
  std::string name_;
};

// `Session.Contents`: the session's values by name.
class SessionContents : public Object {
 public:
  explicit SessionContents(PageSession& session) : session_(session) {}

  std::int32_t Count() const { return static_cast<std::int32_t>(session_.Names().size()); }
  Value Item(std::string_view name) const { return session_.Get(name); }
  void Remove(std::string_view name) { session_.Set(name, Empty{}); }
  void RemoveAll();
  std::vector<std::string> Names() const { return session_.Names(); }

 private:
  PageSession& session_;
};

// `Application`: the texts that the settings name, which pages only read.
class ApplicationObject : public Object {
 public:
  explicit ApplicationObject(const NamedTexts& values) : values_(values) {}

  // Empty for a name that the settings do not have; names are matched without regard to case.
  Value Item(std::string_view name) const;
  std::int32_t Count() const { return static_cast<std::int32_t>(values_.size()); }

 private:
  const NamedTexts& values_;
};

// The page's `Session`.
class SessionObject : public Session {
 public:
  bool SeesCalls() const override { return false; }

  // What is given outlives this object.
  SessionObject(Engine& engine, PageSession& session, const PageOptions& options)
      : engine_(engine), session_(session), options_(options) {}

  Value Item(std::string_view name) override { return session_.Get(name); }
  std::shared_ptr<LiveContainer> StaticObject(std::string_view name) override;

  // `Session.Value(name)` reads; with a second argument it writes. Objects are not kept: they fail with 13, as
  // a date that is none does.
  Value Access(std::string_view name, std::optional<Value> value);

  // What `Session.StaticObjects(name)` is to a script; empty when there is none of that name.
  Value Static(std::string_view name);
  void Abandon() { session_.Abandon(); }

  std::shared_ptr<SessionItem> Reference(std::string_view name);
  std::shared_ptr<SessionContents> Contents() const { return contents_; }
  std::string SessionID() const { return session_.Id(); }
  std::int32_t Timeout() const { return options_.sessionMinutes; }

  // Tokens of forms that act; `PageSession` has them.
  std::string NewToken(std::string_view purpose) { return session_.NewToken(purpose); }
  bool TakeToken(std::string_view purpose, std::string_view token) { return session_.TakeToken(purpose, token); }
  void NoteRefusal(std::string_view what) { session_.NoteRefusal(what); }

 private:
  // Leaves the static object of a name on the stack, undefined when there is none.
  void PushStatic(std::string_view name);

  Engine& engine_;
  PageSession& session_;
  const PageOptions& options_;
  std::shared_ptr<SessionContents> contents_ = std::make_shared<SessionContents>(session_);
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
