#include "host/script/request.h"

#include <utility>

#include "host/script/text.h"
#include "host/script/url_parts.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"

namespace kalvo::host {
namespace {

void AddPart(NamedValues& names, std::string_view part) {
  names.Add(UrlDecoded(KeyOf(part)), UrlDecoded(ValueOf(part)));
}

NamedValues ServerVariablesOf(const PageRequest& request) {
  const std::pair<std::string_view, std::string_view> kOwn[] = {
      {"URL", request.url},
      {"SCRIPT_NAME", request.url},
      {"PATH_INFO", request.url},
      {"QUERY_STRING", request.queryString},
      {"REQUEST_METHOD", request.method},
      {"LOGON_USER", request.logonName},
      {"HTTP_COOKIE", request.cookies},
  };
  NamedValues names;
  for (const auto& [name, value] : kOwn) names.Add(name, WellFormed(value));
  for (const auto& [name, value] : request.serverVariables) {
    if (names.Of(name).empty()) names.Add(WellFormed(name), WellFormed(value));
  }
  return names;
}

std::shared_ptr<NameCollection> Collection(NamedValues names, std::string_view text, bool lists) {
  return std::make_shared<NameCollection>(std::move(names), WellFormed(text), lists);
}

}  // namespace

NamedValues NamedValues::FromQuery(std::string_view text) {
  NamedValues names;
  ForEachPart(text, '&', [&](std::string_view part) { AddPart(names, part); });
  return names;
}

NamedValues NamedValues::FromCookies(std::string_view header) {
  NamedValues names;
  ForEachPart(header, ';', [&](std::string_view part) {
    const std::size_t start = part.find_first_not_of(" \t");
    if (start == std::string_view::npos) return;
    part = part.substr(start, part.find_last_not_of(" \t") - start + 1);
    AddPart(names, part);
  });
  return names;
}

void NamedValues::Add(std::string_view name, std::string value) {
  const auto [place, isNew] = places_.try_emplace(ToLower(name), keys_.size());
  if (isNew) {
    keys_.emplace_back(name);
    values_.emplace_back();
  }
  values_[place->second].push_back(std::move(value));
}

const std::vector<std::string>& NamedValues::Of(std::string_view name) const {
  static const std::vector<std::string> kNone;
  const auto found = places_.find(ToLower(name));
  return found == places_.end() ? kNone : values_[found->second];
}

std::optional<std::string> FirstValue(std::string_view text, std::string_view name) {
  std::optional<std::string> found;
  ForEachPart(text, '&', [&](std::string_view part) {
    const std::string_view key = KeyOf(part);
    if (found || key.size() > 3 * name.size()) return;  // every byte of a name is one byte, or three
    if (EqualsIgnoringCase(UrlDecoded(key), name)) found = UrlDecoded(ValueOf(part));
  });
  return found;
}

std::string JoinedValues(const std::vector<std::string>& values) {
  std::string text;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) text += ", ";
    text += values[i];
  }
  return text;
}

std::string ValueList::Item(std::int32_t i) const {
  if (i < 1 || i > Count()) throw SubscriptOutOfRange();
  return values_[static_cast<std::size_t>(i) - 1];
}

Value NameCollection::Item(std::string_view name) const {
  if (!lists_) return JoinedValues(names_.Of(name));
  return std::make_shared<ValueList>(names_.Of(name));
}

RequestObject::RequestObject(const PageRequest& request)
    : query_(Collection(NamedValues::FromQuery(request.queryString), request.queryString, true)),
      form_(Collection(NamedValues::FromQuery(request.form), request.form, true)),
      cookies_(Collection(NamedValues::FromCookies(request.cookies), request.cookies, false)),
      variables_(Collection(ServerVariablesOf(request), "", false)) {}

const NameCollection* RequestObject::Holder(std::string_view name) const {
  for (const auto* collection : {query_.get(), form_.get(), cookies_.get(), variables_.get()}) {
    if (!collection->Names().Of(name).empty()) return collection;
  }
  return nullptr;
}

Value RequestObject::Lookup(std::string_view name) const {
  const NameCollection* holder = Holder(name);
  return holder != nullptr ? holder->Item(name) : Value(std::string());
}

std::int32_t RequestObject::QueryCount(std::string_view key) {
  return static_cast<std::int32_t>(query_->Names().Of(key).size());
}

std::string RequestObject::QueryItem(std::string_view key, std::int32_t i) {
  const std::vector<std::string>& values = query_->Names().Of(key);
  if (i < 1 || static_cast<std::size_t>(i) > values.size()) throw SubscriptOutOfRange();
  return values[static_cast<std::size_t>(i) - 1];
}

std::string RequestObject::QueryText(std::string_view key) { return JoinedValues(query_->Names().Of(key)); }

std::string RequestObject::ServerVariable(std::string_view name) { return JoinedValues(variables_->Names().Of(name)); }

std::string RequestObject::Item(std::string_view name) {
  const NameCollection* holder = Holder(name);
  return holder != nullptr ? JoinedValues(holder->Names().Of(name)) : std::string();
}

}  // namespace kalvo::host
