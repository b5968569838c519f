#include "kalvo/memory/memory_page.h"

#include "kalvo/platform/conversion.h"
#include "kalvo/platform/encoding.h"
#include "kalvo/platform/error.h"

namespace kalvo {

// ---- request --------------------------------------------------------------------------------------------

std::vector<std::string> MemoryRequest::QueryKeys() {
  std::vector<std::string> keys;
  for (const MemoryParameter& parameter : parameters_) keys.push_back(parameter.name);
  return keys;
}

const MemoryParameter* MemoryRequest::Find(std::string_view key) const {
  for (const MemoryParameter& parameter : parameters_) {
    if (EqualsIgnoringCase(parameter.name, key)) return &parameter;
  }
  return nullptr;
}

std::string MemoryRequest::QueryItem(std::string_view key, std::int32_t i) {
  const MemoryParameter* parameter = Find(key);
  if (i != 1 || !parameter) throw SubscriptOutOfRange();
  return parameter->value;
}

std::string MemoryRequest::QueryText(std::string_view key) {
  const MemoryParameter* parameter = Find(key);
  return parameter ? parameter->value : std::string();
}

std::string MemoryRequest::ServerVariable(std::string_view name) {
  return EqualsIgnoringAsciiCase(name, "URL") ? url_ : std::string();
}

std::string MemoryRequest::Item(std::string_view name) { return Find(name) ? QueryText(name) : ServerVariable(name); }

// ---- session and server ---------------------------------------------------------------------------------

Value MemorySession::Item(std::string_view) { return Empty{}; }

std::shared_ptr<LiveContainer> MemorySession::StaticObject(std::string_view) { throw ObjectRequired(); }

void MemoryServer::HTMLEncode(std::string& out, std::string_view text) { AppendHtmlEncoded(out, text); }

void MemoryServer::URLEncode(std::string& out, std::string_view text) { AppendUrlEncoded(out, text); }

}  // namespace kalvo
