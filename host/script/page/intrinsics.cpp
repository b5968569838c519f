// The page's intrinsic objects as scripts see them.
#include "host/script/page/intrinsics.h"

#include "host/script/binding/classes/members.h"
#include "host/script/page/page_objects.h"

namespace kalvo::host {
namespace {

Value ItemByKey(NameCollection& collection, std::string_view key) { return collection.Item(key); }

// A moment that is set goes into the header alone.
Value CookieExpires(ResponseCookie&) { return Empty{}; }

void WriteText(ResponseObject& response, const Printed& printed) { response.Write(printed.text); }

// clang-format off
constexpr Member kRequest[] = {
  Property<&RequestObject::QueryString>("QueryString",
    "The parameters of the address, by name."),
  Property<&RequestObject::Form>("Form",
    "The fields of a posted form (application/x-www-form-urlencoded), by name."),
  Property<&RequestObject::Cookies>("Cookies",
    "The cookies that the browser sent, by name."),
  Property<&RequestObject::ServerVariables>("ServerVariables",
    "What the server knows of the request, by name: URL, REQUEST_METHOD, LOGON_USER, REMOTE_ADDR, "
    "HTTP_USER_AGENT, ..."),
  Property<&RequestObject::Text>("Text",
    "The posted body where it is no form, such as JSON, at most 1 MiB; \"\" otherwise. Nobody has looked at "
    "what it holds."),
  Method<&RequestObject::Lookup>("Item", {{"name"}},
    "Answers what the first of QueryString, Form, Cookies and ServerVariables has under a name; \"\" where "
    "none has it."),
};

constexpr Member kNameCollection[] = {
  Property<&NameCollection::Count>("Count",
    "How many names there are."),
  Method<&ItemByKey>("Item", {{"key"}},
    "Answers the values of a name, whose case does not matter; none of them is ever undefined."),
  Method<&NameCollection::Text>("toString",
    "Answers the whole text, as it came."),
  Method<&NameCollection::Text>("valueOf",
    "Answers the whole text, as it came."),
};

constexpr Member kValueList[] = {
  Property<&ValueList::Count>("Count",
    "How many values there are; 0 for a name that was not given."),
  Method<&ValueList::Item>("Item", {{"i"}},
    "Answers a value by its number, from 1. Fails with 9 outside of them."),
  Method<&ValueList::Text>("toString",
    "Answers the values joined by \", \"; \"\" for a name that was not given."),
  Method<&ValueList::Text>("valueOf",
    "Answers the values joined by \", \"; \"\" for a name that was not given."),
};

constexpr Member kResponse[] = {
  Method<&WriteText>("Write", {{"text"}},
    "Writes a value as `<%= %>` does: text as it is, true as \"True\", null and undefined as nothing."),
  Method<&ResponseObject::Flush>("Flush",
    "Sends what was written; the headers are sent with the first of it."),
  Method<&ResponseObject::Clear>("Clear",
    "Forgets what was written and not sent."),
  Method<&ResponseObject::End>("End",
    "Ends the page; what was written is sent."),
  Method<&ResponseObject::Redirect>("Redirect", {{"url"}},
    "Sends the browser to another address, encoded where it has to be, and ends the page. Fails with "
    "0x80004005 without an address and after the headers are sent."),
  Property<&ResponseObject::Status, &ResponseObject::SetStatus>("Status",
    "The status: a number from 200 to 599 and a text, \"404 Not Found\". Fails after the headers are sent."),
  Property<&ResponseObject::ContentType, &ResponseObject::SetContentType>("ContentType",
    "The type of what is written, \"text/html\" at first; a text type goes out as UTF-8. Fails after the "
    "headers are sent."),
  Method<&ResponseObject::AddHeader>("AddHeader", {{"name"}, {"value"}},
    "Adds a header. Fails with 0x80004005 for line breaks, for Content-Length, Transfer-Encoding and "
    "Connection, and after the headers are sent."),
  Method<&ResponseObject::BinaryWrite>("BinaryWrite", {{"bytes"}},
    "Writes bytes: an array of numbers from 0 to 255, or a buffer. Fails with 13 for anything else, with 6 "
    "for other numbers."),
  Property<&ResponseObject::Cookies>("Cookies",
    "The cookies that the response sets: `Response.Cookies(name) = value`."),
  Property<&ResponseObject::CacheControl, &ResponseObject::SetCacheControl>("CacheControl",
    "Who may keep the page: the text of the Cache-Control header. Without one nobody does."),
  Property<&ResponseObject::Expires, &ResponseObject::SetExpires>("Expires",
    "The same in minutes from now; 0 and less is not at all."),
  Property<&ResponseObject::Charset, &ResponseObject::SetCharset>("Charset",
    "Always \"utf-8\"; another name fails."),
  Property<&ResponseObject::Buffer, &ResponseObject::SetBuffer>("Buffer",
    "Whether what is written waits for the page's end or a flush; true at first."),
};

constexpr Member kResponseCookies[] = {
  Method<&ResponseCookies::Item>("Item", {{"name"}},
    "Answers the cookie of a name, made when it is first asked for. Fails for a name that cannot stand in a "
    "header."),
};

constexpr Member kResponseCookie[] = {
  Property<&ResponseCookie::Text, &ResponseCookie::SetValue>("value",
    "The text, which is encoded and decoded again by Request.Cookies."),
  Property<&ResponseCookie::Path, &ResponseCookie::SetPath>("Path",
    "The path below which browsers send it back, \"/\" at first."),
  Property<&ResponseCookie::MaxAge, &ResponseCookie::SetMaxAge>("MaxAge",
    "How long browsers keep it, in seconds; -1, as at first, until they are closed."),
  Property<&CookieExpires, &ResponseCookie::SetExpires>("Expires",
    "The same as a moment: a Date. It is only written."),
  Property<&ResponseCookie::Secure, &ResponseCookie::SetSecure>("Secure",
    "Whether it goes over encrypted connections only; false at first."),
  Property<&ResponseCookie::HttpOnly, &ResponseCookie::SetHttpOnly>("HttpOnly",
    "Whether it is out of the reach of scripts; true at first."),
  Method<&ResponseCookie::Text>("toString",
    "Answers the text."),
};

constexpr Member kServer[] = {
  Method<&ServerObject::EncodedHtml>("HTMLEncode", {{"text"}},
    "Answers a text with & < > \" as character references."),
  Method<&ServerObject::EncodedUrl>("URLEncode", {{"text"}},
    "Answers a text as a value of a query string: \"a b\" is \"a+b\"."),
  Method<&ServerObject::MapPath>("MapPath", {{"path"}},
    "Answers the file of a path: \"/a.txt\" from the site's root, \"a.txt\" from the page's folder. Fails "
    "with 0x80004005 for one outside of the site."),
  Method<&ServerObject::CreateObject>("CreateObject", {{"name"}},
    "Makes an object of a published class and tells it of the page. Fails with 429 for a class that there is "
    "not."),
  Method<&ServerObject::ReadText>("ReadText", {{"path"}},
    "Answers the text of a file below the site, named as for MapPath: UTF-8, at most 16 MiB. Fails with "
    "0x80004005 where there is none."),
};

constexpr Member kSession[] = {
  Method<&SessionObject::Access>("Value", {{"name"}, {"value"}},
    "Answers a value of the session, undefined where there is none; with a second argument sets it. Texts, "
    "numbers, booleans, dates and null are kept; fails with 13 for an object."),
  Method<&SessionObject::Static>("StaticObjects", {{"name"}},
    "Answers an object of the session's own, such as \"gLiveDriller\"; undefined where there is none."),
  Method<&SessionObject::Abandon>("Abandon",
    "Ends the session when the page has ended."),
  Property<&SessionObject::Contents>("Contents",
    "All values of the session, by name."),
  Property<&SessionObject::SessionID>("SessionID",
    "A name of the session that tells nobody how to take it over."),
  Property<&SessionObject::Timeout>("Timeout",
    "After how many minutes without a request it ends."),
  Method<&SessionObject::Reference>("Reference", {{"name"}},
    "Answers an object whose `value` is that of the session: `Session(name) = v` stands for "
    "`Session.Reference(name).value = v`."),
  Method<&SessionObject::NewToken>("NewToken", {{"purpose"}},
    "Answers a token for a form that acts: good once, for an hour, for this session and purpose."),
  Method<&SessionObject::TakeToken>("TakeToken", {{"purpose"}, {"token"}},
    "Takes the token of a posted form, and answers whether it was good."),
  Method<&SessionObject::NoteRefusal>("NoteRefusal", {{"what"}},
    "Writes down that the visitor was refused what a text says."),
};

constexpr Member kSessionItem[] = {
  Property<&SessionItem::Get, &SessionItem::Set>("value",
    "The session's value of the name."),
};

constexpr Member kSessionContents[] = {
  Property<&SessionContents::Count>("Count",
    "How many values the session has."),
  Method<&SessionContents::Item>("Item", {{"name"}},
    "Answers a value by its name; undefined where there is none."),
  Method<&SessionContents::Remove>("Remove", {{"name"}},
    "Removes a value."),
  Method<&SessionContents::RemoveAll>("RemoveAll",
    "Removes all values."),
};

constexpr Member kApplication[] = {
  Property<&ApplicationObject::Count>("Count",
    "How many texts the settings name."),
  Method<&ApplicationObject::Item>("Item", {{"name"}},
    "Answers a text of the settings by its name; undefined where there is none."),
};

constexpr Member kScriptingContext[] = {
  Property<&ScriptingContext::GetRequest>("Request",
    "The page's request."),
  Property<&ScriptingContext::GetResponse>("Response",
    "The page's response."),
  Property<&ScriptingContext::GetServer>("Server",
    "The page's server."),
  Property<&ScriptingContext::GetSession>("Session",
    "The page's session."),
};
// clang-format on

}  // namespace

std::span<const Member> RequestMembers() { return kRequest; }
std::span<const Member> NameCollectionMembers() { return kNameCollection; }
std::span<const Member> ValueListMembers() { return kValueList; }
std::span<const Member> ResponseMembers() { return kResponse; }
std::span<const Member> ResponseCookiesMembers() { return kResponseCookies; }
std::span<const Member> ResponseCookieMembers() { return kResponseCookie; }
std::span<const Member> ServerMembers() { return kServer; }
std::span<const Member> SessionMembers() { return kSession; }
std::span<const Member> SessionItemMembers() { return kSessionItem; }
std::span<const Member> SessionContentsMembers() { return kSessionContents; }
std::span<const Member> ApplicationMembers() { return kApplication; }
std::span<const Member> ScriptingContextMembers() { return kScriptingContext; }

// ---- objects that are called ----------------------------------------------------------------------------

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

void CallResponseCookies(CallFrame& frame) {
  PushObject(frame.engine, SelfOf<ResponseCookies>(frame).Item(frame.TextOf(0)));
}

void CallSessionContents(CallFrame& frame) {
  PushValue(frame.engine, SelfOf<SessionContents>(frame).Item(frame.TextOf(0)));
}

void CallApplication(CallFrame& frame) {
  PushValue(frame.engine, SelfOf<ApplicationObject>(frame).Item(frame.TextOf(0)));
}

void CallSession(CallFrame& frame) { PushValue(frame.engine, SelfOf<SessionObject>(frame).Item(frame.TextOf(0))); }

// ---- keys that are enumerated ---------------------------------------------------------------------------

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

void DecorateSessionContents(Engine& engine, const Object& object) {
  duk_context* context = engine.Context();
  for (const std::string& name : dynamic_cast<const SessionContents&>(object).Names()) {
    PushText(context, name);
    PushValue(engine, dynamic_cast<const SessionContents&>(object).Item(name));
    duk_def_prop(context, -3, DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_SET_WEC | DUK_DEFPROP_FORCE);
  }
}

}  // namespace kalvo::host
