#include "host/script/page/request.h"

#include <utility>

#include "host/script/text/text.h"
#include "kalvo/platform/error.h"

namespace kalvo::host {
namespace {

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

RequestObject::RequestObject(const PageRequest& request)
    : query_(Collection(NamedValues::FromQuery(request.queryString), request.queryString, true)),
      form_(Collection(NamedValues::FromQuery(request.form), request.form, true)),
      cookies_(Collection(NamedValues::FromCookies(request.cookies), request.cookies, false)),
      variables_(Collection(ServerVariablesOf(request), "", false)),
      text_(WellFormed(request.body)) {}

const NameCollection* RequestObject::Holder(std::string_view name) const {
  for (const auto* collection : {query_.get(), form_.get(), cookies_.get(), variables_.get()}) {
    if (!collection->Names().Of(name).empty()) return collection;
  }
  return nullptr;
}

Value RequestObject::Lookup(std::string_view name) const {
  const NameCollection* holder = Holder(name);
  return holder ? holder->Item(name) : Value(std::string());
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
  return holder ? JoinedValues(holder->Names().Of(name)) : std::string();
}

}  // namespace kalvo::host
