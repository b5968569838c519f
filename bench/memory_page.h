#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kalvo/platform/conversion.h"
#include "kalvo/platform/encoding.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/page_host.h"

// A page in memory: a request with the few parameters that a table reads, and a response that collects its text.
namespace kalvo::bench {

struct Parameter {
  std::string name, value;
};

class MemoryResponse : public Response {
 public:
  bool SeesCalls() const override { return false; }
  void Write(std::string_view written) override { text += written; }
  void Flush() override {}
  std::string text;
};

class MemoryRequest : public Request {
 public:
  explicit MemoryRequest(std::vector<Parameter> parameters) : parameters_(std::move(parameters)) {}
  bool SeesCalls() const override { return false; }
  std::vector<std::string> QueryKeys() override {
    std::vector<std::string> keys;
    for (const Parameter& parameter : parameters_) keys.push_back(parameter.name);
    return keys;
  }
  std::int32_t QueryCount(std::string_view key) override { return Find(key) ? 1 : 0; }
  std::string QueryItem(std::string_view key, std::int32_t) override { return QueryText(key); }
  std::string QueryText(std::string_view key) override {
    const Parameter* parameter = Find(key);
    return parameter ? parameter->value : std::string();
  }
  std::string ServerVariable(std::string_view name) override { return name == "URL" ? "/report.asp" : ""; }
  std::string Item(std::string_view name) override { return QueryText(name); }

 private:
  const Parameter* Find(std::string_view key) const {
    for (const Parameter& parameter : parameters_) {
      if (EqualsIgnoringCase(parameter.name, key)) return &parameter;
    }
    return nullptr;
  }

  std::vector<Parameter> parameters_;
};

class MemorySession : public Session {
 public:
  bool SeesCalls() const override { return false; }
  Value Item(std::string_view) override { return Empty{}; }
  std::shared_ptr<LiveContainer> StaticObject(std::string_view) override { throw ObjectRequired(); }
};

class MemoryServer : public Server {
 public:
  bool SeesCalls() const override { return false; }
  void HTMLEncode(std::string& out, std::string_view text) override { AppendHtmlEncoded(out, text); }
  void URLEncode(std::string& out, std::string_view text) override { AppendUrlEncoded(out, text); }
};

class MemoryPage : public ScriptingContext {
 public:
  explicit MemoryPage(std::vector<Parameter> parameters)
      : request(std::make_shared<MemoryRequest>(std::move(parameters))) {}
  std::shared_ptr<Response> GetResponse() override { return response; }
  std::shared_ptr<Request> GetRequest() override { return request; }
  std::shared_ptr<Session> GetSession() override { return session; }
  std::shared_ptr<Server> GetServer() override { return server; }

  std::shared_ptr<MemoryResponse> response = std::make_shared<MemoryResponse>();
  std::shared_ptr<MemoryRequest> request;
  std::shared_ptr<MemorySession> session = std::make_shared<MemorySession>();
  std::shared_ptr<MemoryServer> server = std::make_shared<MemoryServer>();
};

}  // namespace kalvo::bench
