#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kalvo/platform/page_host.h"

namespace kalvo {

// A parameter of a query string, decoded: {"PageSize", "10"}.
struct MemoryParameter {
  std::string name, value;
};

// Collects what is written.
class MemoryResponse : public Response {
 public:
  bool SeesCalls() const override { return false; }
  void Write(std::string_view written) override { text += written; }
  void Flush() override {}
  std::string text;
};

// A request with a query string, each parameter once, and the address of its page.
class MemoryRequest : public Request {
 public:
  explicit MemoryRequest(std::vector<MemoryParameter> parameters = {}, std::string url = "/report.asp")
      : parameters_(std::move(parameters)), url_(std::move(url)) {}

  bool SeesCalls() const override { return false; }
  std::vector<std::string> QueryKeys() override;
  std::int32_t QueryCount(std::string_view key) override { return Find(key) ? 1 : 0; }
  std::string QueryItem(std::string_view key, std::int32_t i) override;
  std::string QueryText(std::string_view key) override;
  std::string ServerVariable(std::string_view name) override;
  std::string Item(std::string_view name) override;

 private:
  const MemoryParameter* Find(std::string_view key) const;

  const std::vector<MemoryParameter> parameters_;
  const std::string url_;
};

// A session that holds nothing.
class MemorySession : public Session {
 public:
  bool SeesCalls() const override { return false; }
  Value Item(std::string_view name) override;
  std::shared_ptr<LiveContainer> StaticObject(std::string_view name) override;
};

// Encodes & < > " for HTML, and all but ASCII letters and digits for addresses.
class MemoryServer : public Server {
 public:
  bool SeesCalls() const override { return false; }
  void HTMLEncode(std::string& out, std::string_view text) override;
  void URLEncode(std::string& out, std::string_view text) override;
};

// A page host in memory, for whoever wants the HTML of a report and serves it by other means:
//
//   const auto page = std::make_shared<MemoryPage>(std::vector<MemoryParameter>{{"PageSize", "10"}});
//   generator->OnStartPage(*page);
//   generator->BuildTable(TABLE_CURRENTALERTS);
//   Serve(page->Html());
class MemoryPage : public ScriptingContext {
 public:
  explicit MemoryPage(std::vector<MemoryParameter> parameters = {}, std::string url = "/report.asp")
      : request_(std::make_shared<MemoryRequest>(std::move(parameters), std::move(url))) {}

  std::shared_ptr<Response> GetResponse() override { return response_; }
  std::shared_ptr<Request> GetRequest() override { return request_; }
  std::shared_ptr<Session> GetSession() override { return session_; }
  std::shared_ptr<Server> GetServer() override { return server_; }

  // What has been written so far.
  const std::string& Html() const { return response_->text; }

 private:
  const std::shared_ptr<MemoryResponse> response_ = std::make_shared<MemoryResponse>();
  const std::shared_ptr<MemoryRequest> request_;
  const std::shared_ptr<MemorySession> session_ = std::make_shared<MemorySession>();
  const std::shared_ptr<MemoryServer> server_ = std::make_shared<MemoryServer>();
};

}  // namespace kalvo
