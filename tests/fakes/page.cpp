#include "fakes/page.h"

#include "kalvo/platform/conversion.h"

namespace kalvo::test {

namespace {

int HexDigit(char c) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const std::size_t at = kDigits.find(static_cast<char>(c >= 'A' && c <= 'F' ? c + 32 : c));
  return at == std::string_view::npos ? -1 : static_cast<int>(at);
}

std::string Decoded(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool escape =
        text[i] == '%' && i + 2 < text.size() && HexDigit(text[i + 1]) >= 0 && HexDigit(text[i + 2]) >= 0;
    if (escape) {
      out += static_cast<char>(HexDigit(text[i + 1]) * 16 + HexDigit(text[i + 2]));
      i += 2;
    } else {
      out += text[i] == '+' ? ' ' : text[i];
    }
  }
  return out;
}

bool IsAlphanumeric(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

}  // namespace

FakeRequest::Parameters FakeRequest::Parsed(std::string_view text) {
  Parameters parameters;
  while (!text.empty()) {
    const std::string_view part = text.substr(0, text.find('&'));
    text.remove_prefix(std::min(part.size() + 1, text.size()));
    if (part.empty()) continue;
    const std::size_t equals = part.find('=');
    const std::string key = Decoded(part.substr(0, equals));
    const std::string value = equals == std::string_view::npos ? "" : Decoded(part.substr(equals + 1));
    const auto same = [&](const Parameter& parameter) { return EqualsIgnoringCase(parameter.key, key); };
    auto found = std::find_if(parameters.begin(), parameters.end(), same);
    if (found == parameters.end()) found = parameters.insert(found, Parameter{key, {}});
    found->values.push_back(value);
  }
  return parameters;
}

const FakeRequest::Parameter* FakeRequest::Find(const Parameters& parameters, std::string_view key) {
  for (const Parameter& parameter : parameters) {
    if (EqualsIgnoringCase(parameter.key, key)) return &parameter;
  }
  return nullptr;
}

std::string FakeRequest::Joined(const Parameters& parameters, std::string_view key) {
  std::string out;
  if (const Parameter* parameter = Find(parameters, key)) {
    for (const std::string& value : parameter->values) Append(out, &value == &parameter->values[0] ? "" : ", ", value);
  }
  return out;
}

std::vector<std::string> FakeRequest::QueryKeys() {
  std::vector<std::string> keys;
  for (const Parameter& parameter : query_) keys.push_back(parameter.key);
  return keys;
}

std::int32_t FakeRequest::QueryCount(std::string_view key) {
  steps.Do("QueryCount", key);
  const Parameter* parameter = Find(query_, key);
  return parameter ? static_cast<std::int32_t>(parameter->values.size()) : 0;
}

std::string FakeRequest::QueryItem(std::string_view key, std::int32_t i) {
  steps.Do("QueryItem", key, i);
  const Parameter* parameter = Find(query_, key);
  if (!parameter || i < 1 || i > static_cast<std::int32_t>(parameter->values.size())) throw SubscriptOutOfRange();
  return parameter->values[static_cast<std::size_t>(i - 1)];
}

std::string FakeRequest::ServerVariable(std::string_view name) {
  const auto found = variables.find(std::string(name));
  return found == variables.end() ? "" : found->second;
}

std::string FakeRequest::Item(std::string_view name) {
  steps.Do("Item", name);
  if (Find(query_, name)) return Joined(query_, name);
  if (Find(form_, name)) return Joined(form_, name);
  return ServerVariable(name);
}

void FakeServer::HTMLEncode(std::string& out, std::string_view text) {
  steps.Do("HTMLEncode", text);
  if (fails) throw Error(codes::kFailed, "Encoder refused.");
  for (const char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      default: out += c;
    }
  }
}

void FakeServer::URLEncode(std::string& out, std::string_view text) {
  steps.Do("URLEncode", text);
  if (fails) throw Error(codes::kFailed, "Encoder refused.");
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == ' ') {
      out += '+';
    } else if (IsAlphanumeric(c)) {
      out += c;
    } else {
      Append(out, '%', kDigits[byte >> 4], kDigits[byte & 15]);
    }
  }
}

Value FakeSession::Item(std::string_view name) {
  const auto found = values.find(std::string(name));
  return found == values.end() ? Value() : found->second;
}

std::shared_ptr<LiveContainer> FakeSession::StaticObject(std::string_view name) {
  const auto found = objects.find(std::string(name));
  if (found == objects.end()) throw ObjectRequired();
  return found->second;
}

}  // namespace kalvo::test
