// The page's intrinsic objects as scripts see them.
#include "host/script/page/intrinsics.h"

#include "host/script/binding/classes/members.h"
#include "host/script/page/page_objects.h"

namespace kalvo::host {
namespace {

Value ItemByKey(NameCollection& collection, std::string_view key) { return collection.Item(key); }

void WriteText(ResponseObject& response, const Printed& printed) { response.Write(printed.text); }

// clang-format off
constexpr Member kRequest[] = {
  Property<&RequestObject::QueryString>("QueryString"),
  Property<&RequestObject::Form>("Form"),
  Property<&RequestObject::Cookies>("Cookies"),
  Property<&RequestObject::ServerVariables>("ServerVariables"),
  Method<&RequestObject::Lookup>("Item", {{"name"}}),
};

constexpr Member kNameCollection[] = {
  Property<&NameCollection::Count>("Count"),
  Method<&ItemByKey>("Item", {{"key"}}),
  Method<&NameCollection::Text>("toString"),
  Method<&NameCollection::Text>("valueOf"),
};

constexpr Member kValueList[] = {
  Property<&ValueList::Count>("Count"),
  Method<&ValueList::Item>("Item", {{"i"}}),
  Method<&ValueList::Text>("toString"),
  Method<&ValueList::Text>("valueOf"),
};

constexpr Member kResponse[] = {
  Method<&WriteText>("Write", {{"text"}}),
  Method<&ResponseObject::Flush>("Flush"),
  Method<&ResponseObject::Clear>("Clear"),
  Method<&ResponseObject::End>("End"),
  Method<&ResponseObject::Redirect>("Redirect", {{"url"}}),
  Property<&ResponseObject::Status, &ResponseObject::SetStatus>("Status"),
  Property<&ResponseObject::ContentType, &ResponseObject::SetContentType>("ContentType"),
  Method<&ResponseObject::AddHeader>("AddHeader", {{"name"}, {"value"}}),
};

constexpr Member kServer[] = {
  Method<&ServerObject::EncodedHtml>("HTMLEncode", {{"text"}}),
  Method<&ServerObject::EncodedUrl>("URLEncode", {{"text"}}),
  Method<&ServerObject::MapPath>("MapPath", {{"path"}}),
  Method<&ServerObject::CreateObject>("CreateObject", {{"name"}}),
};

constexpr Member kSession[] = {
  Method<&SessionObject::Access>("Value", {{"name"}, {"value"}}),
  Method<&SessionObject::Static>("StaticObjects", {{"name"}}),
  Method<&SessionObject::Abandon>("Abandon"),
  Method<&SessionObject::NewToken>("NewToken", {{"purpose"}}),
  Method<&SessionObject::TakeToken>("TakeToken", {{"purpose"}, {"token"}}),
  Method<&SessionObject::NoteRefusal>("NoteRefusal", {{"what"}}),
};

constexpr Member kScriptingContext[] = {
  Property<&ScriptingContext::GetRequest>("Request"),
  Property<&ScriptingContext::GetResponse>("Response"),
  Property<&ScriptingContext::GetServer>("Server"),
  Property<&ScriptingContext::GetSession>("Session"),
};
// clang-format on

}  // namespace

std::span<const Member> RequestMembers() { return kRequest; }
std::span<const Member> NameCollectionMembers() { return kNameCollection; }
std::span<const Member> ValueListMembers() { return kValueList; }
std::span<const Member> ResponseMembers() { return kResponse; }
std::span<const Member> ServerMembers() { return kServer; }
std::span<const Member> SessionMembers() { return kSession; }
std::span<const Member> ScriptingContextMembers() { return kScriptingContext; }

// ---- objects that are called -------------------------------------------------------------------------------------

void CallRequest(CallFrame& frame) { PushValue(frame.engine, SelfOf<RequestObject>(frame).Lookup(frame.TextOf(0))); }

void CallNameCollection(CallFrame& frame) {
  const auto& collection = SelfOf<NameCollection>(frame);
  if (frame.given == 0) return PushText(frame.Context(), collection.Text());
  PushValue(frame.engine, collection.Item(frame.TextOf(0)));
}

void CallValueList(CallFrame& frame) {
  const auto& values = SelfOf<ValueList>(frame);
  PushText(frame.Context(), frame.given == 0 ? values.Text() : values.Item(ToInt32(frame.ValueOf(0))));
}

void CallSession(CallFrame& frame) { PushValue(frame.engine, SelfOf<SessionObject>(frame).Item(frame.TextOf(0))); }

// ---- keys that are enumerated ------------------------------------------------------------------------------------

namespace {

bool IsMemberName(std::string_view key) {
  for (const Member& member : kNameCollection) {
    if (member.name == key) return true;
  }
  return false;
}

}  // namespace

void DecorateNameCollection(Engine& engine, const Object& object) {
  duk_context* context = engine.Context();
  const auto& collection = dynamic_cast<const NameCollection&>(object);
  for (const std::string& key : collection.Names().Keys()) {
    engine.CheckLimits();
    PushText(context, key);
    if (IsMemberName(key)) {  // enumerated as every key, and still what the collection offers
      duk_dup_top(context);
      duk_get_prop(context, -3);
    } else {
      PushText(context, JoinedValues(collection.Names().Of(key)));
    }
    duk_def_prop(context, -3, DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_SET_WEC | DUK_DEFPROP_FORCE);
  }
}

}  // namespace kalvo::host
