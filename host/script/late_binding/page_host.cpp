// Script objects as scripting context, response, server and session.
#include "host/script/late_binding/adapters.h"
#include "host/script/late_binding/late_bound.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::host {
namespace {

class ScriptResponse : public Response, public LateBound {
 public:
  ScriptResponse(Engine& engine, duk_idx_t index) : LateBound(engine, index, "response") {}

  void Write(std::string_view text) override { Ask("Write", text); }
  void Flush() override { Ask("Flush"); }
};

class ScriptServer : public Server, public LateBound {
 public:
  ScriptServer(Engine& engine, duk_idx_t index) : LateBound(engine, index, "server") {}

  void HTMLEncode(std::string& out, std::string_view text) override { out += AskText("HTMLEncode", text); }
  void URLEncode(std::string& out, std::string_view text) override { out += AskText("URLEncode", text); }
};

// A session is asked as the page host's own is: `Session.Value(name)`, or `Session(name)` where it is a function
// without that member.
class ScriptSession : public Session, public LateBound {
 public:
  ScriptSession(Engine& engine, duk_idx_t index) : LateBound(engine, index, "session") {}

  Value Item(std::string_view name) override {
    Value value;
    Reach("Value", [&](Engine& engine) {
      if (Has(engine, "Value")) {
        PushItem(engine, "Value", name);
      } else {
        PushOwnCall(engine, name);
      }
      value = ValueAt(engine, -1);
    });
    return value;
  }

  std::shared_ptr<LiveContainer> StaticObject(std::string_view name) override {
    std::shared_ptr<LiveContainer> container;
    Reach("StaticObjects", [&](Engine& engine) {
      PushItem(engine, "StaticObjects", name);
      container = InterfaceAt<LiveContainer>(engine, -1);
    });
    return container;
  }

 private:
  // Leaves the item of a name: what the member answers when it is called, else the member's property of that name.
  void PushItem(Engine& engine, const char* member, std::string_view name) const {
    duk_context* context = engine.Context();
    if (PushMember(engine, member)) {
      PushArgument(engine, name);
      duk_call_method(context, 1);
    } else if (duk_is_function(context, -1)) {  // one of the callable intrinsic objects
      PushArgument(engine, name);
      duk_call(context, 1);
    } else {
      if (!duk_is_object(context, -1)) throw ObjectRequired();
      PushArgument(engine, name);
      duk_get_prop(context, -2);
    }
  }

  void PushOwnCall(Engine& engine, std::string_view name) const {
    Reference().Push();
    if (!duk_is_function(engine.Context(), -1)) throw MemberNotSupported();
    PushArgument(engine, name);
    duk_call(engine.Context(), 1);
  }
};

class ScriptScriptingContext : public ScriptingContext, public LateBound {
 public:
  ScriptScriptingContext(Engine& engine, duk_idx_t index) : LateBound(engine, index, "scripting context") {}

  std::shared_ptr<Response> GetResponse() override { return AskFor<Response>("Response"); }
  std::shared_ptr<Request> GetRequest() override { return AskFor<Request>("Request"); }
  std::shared_ptr<Session> GetSession() override { return AskFor<Session>("Session"); }
  std::shared_ptr<Server> GetServer() override { return AskFor<Server>("Server"); }

 private:
  template <typename T>
  std::shared_ptr<T> AskFor(const char* member) {
    std::shared_ptr<T> object;
    Reach(member, [&](Engine& engine) {
      PushAnswer(engine, member);
      object = InterfaceAt<T>(engine, -1);
    });
    return object;
  }
};

}  // namespace

template <>
std::shared_ptr<Response> Adapt<Response>(Engine& engine, duk_idx_t index) {
  return std::make_shared<ScriptResponse>(engine, index);
}

template <>
std::shared_ptr<Server> Adapt<Server>(Engine& engine, duk_idx_t index) {
  return std::make_shared<ScriptServer>(engine, index);
}

template <>
std::shared_ptr<Session> Adapt<Session>(Engine& engine, duk_idx_t index) {
  return std::make_shared<ScriptSession>(engine, index);
}

template <>
std::shared_ptr<ScriptingContext> Adapt<ScriptingContext>(Engine& engine, duk_idx_t index) {
  return std::make_shared<ScriptScriptingContext>(engine, index);
}

}  // namespace kalvo::host
