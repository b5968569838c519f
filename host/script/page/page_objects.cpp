#include "host/script/page/page_objects.h"

#include <cmath>

#include "host/script/late_binding/adapters.h"
#include "host/script/text/text.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/encoding.h"

namespace kalvo::host {
namespace {

constexpr std::string_view kLiveDriller = "gLiveDriller";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kLargestText = 16 << 20;

// What a session keeps: a text, a number, a boolean, a date that is one, null or empty.
bool IsKept(const Value& value) {
  if (const auto* date = std::get_if<Date>(&value)) return std::isfinite(date->serial);
  return !std::holds_alternative<std::shared_ptr<Object>>(value);
}

}  // namespace

// ---- Server ---------------------------------------------------------------------------------------------

void ServerObject::HTMLEncode(std::string& out, std::string_view text) { AppendHtmlEncoded(out, text); }

void ServerObject::URLEncode(std::string& out, std::string_view text) { AppendUrlEncoded(out, text); }

std::string ServerObject::EncodedHtml(std::string_view text) {
  return Built([&](std::string& out) { HTMLEncode(out, text); });
}

std::string ServerObject::EncodedUrl(std::string_view text) {
  return Built([&](std::string& out) { URLEncode(out, text); });
}

std::string ServerObject::MapPath(std::string_view path) const {
  auto file = MappedPath(place_, path);
  if (!file) throw Error(codes::kFailed, "The path leads out of the site");
  return *std::move(file);
}

std::string ServerObject::ReadText(std::string_view path) const {
  const auto refuse = [&](std::string_view why) {
    throw Error(codes::kFailed, Built([&](std::string& out) { Append(out, "The file \"", path, "\" ", why); }));
  };
  std::string text;
  switch (ReadSiteFile(place_, path, kLargestText, text)) {
    case SiteFile::Read: break;
    case SiteFile::Outside: refuse("is not below the site"); break;
    case SiteFile::Missing: refuse("is not there"); break;
    case SiteFile::TooLarge: refuse("is larger than 16 MiB"); break;
  }
  if (text.starts_with(kByteOrderMark)) text.erase(0, kByteOrderMark.size());
  if (WellFormed(text) != text) refuse("is not UTF-8");
  return text;
}

// ---- Session --------------------------------------------------------------------------------------------

void SessionObject::PushStatic(std::string_view name) {
  const std::string key = ToLower(name);
  const auto made = statics_.find(key);
  if (made != statics_.end()) return made->second->Push();
  duk_context* context = engine_.Context();
  for (const ScriptStatic& candidate : options_.statics) {
    if (!EqualsIgnoringCase(candidate.name, name)) continue;
    PushText(context, candidate.text);
    PushText(context, candidate.file);
    duk_compile(context, DUK_COMPILE_EVAL);
    duk_call(context, 0);
    statics_.emplace(key, std::make_unique<ScriptReference>(engine_, -1));
    return;
  }
  if (EqualsIgnoringCase(name, kLiveDriller)) {
    if (!drillerAsked_) driller_ = session_.LiveDriller();
    drillerAsked_ = true;
    if (driller_) return PushObject(engine_, driller_);
  }
  const auto [known, isNew] = hostObjects_.try_emplace(key);
  if (isNew) known->second = session_.HostObject(name);
  if (known->second) return PushObject(engine_, known->second);
  duk_push_undefined(context);
}

Value SessionObject::Static(std::string_view name) {
  Value value;
  engine_.Protected(name, [&] {
    PushStatic(name);
    value = ValueAt(engine_, -1);
  });
  return value;
}

std::shared_ptr<LiveContainer> SessionObject::StaticObject(std::string_view name) {
  std::shared_ptr<LiveContainer> container;
  engine_.Protected(name, [&] {
    PushStatic(name);
    container = InterfaceAt<LiveContainer>(engine_, -1);
  });
  return container;
}

std::shared_ptr<SessionItem> SessionObject::Reference(std::string_view name) {
  return std::make_shared<SessionItem>(session_, std::string(name));
}

void SessionItem::Set(const Value& value) {
  if (!IsKept(value)) {
    throw ExplainedError(TypeMismatch(),
                         "a session keeps texts, numbers, booleans and dates; JSON.stringify makes a text");
  }
  session_.Set(name_, value);
}

void SessionContents::RemoveAll() {
  for (const std::string& name : session_.Names()) Remove(name);
}

Value SessionObject::Access(std::string_view name, std::optional<Value> value) {
  if (!value) return Item(name);
  SessionItem(session_, std::string(name)).Set(*value);
  return Empty{};
}

// ---- Application ----------------------------------------------------------------------------------------

Value ApplicationObject::Item(std::string_view name) const {
  for (const auto& [key, text] : values_) {
    if (EqualsIgnoringCase(key, name)) return text;
  }
  return Empty{};
}

}  // namespace kalvo::host
