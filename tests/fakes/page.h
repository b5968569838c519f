#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fakes/steps.h"
#include "kalvo/platform/live_mailbox.h"
#include "kalvo/platform/page_host.h"

namespace kalvo::test {

// Collects what is written. Steps: Write, Flush.
class FakeResponse : public Response {
 public:
  bool sees = true;  // whether it is asked as an object is that sees every call
  bool SeesCalls() const override { return sees; }
  std::string text;
  int flushes = 0;
  std::string refused;  // a write that holds this text fails; "" is none
  Steps steps;

  void Write(std::string_view written) override {
    steps.Do("Write");
    if (!refused.empty() && written.find(refused) != std::string_view::npos) {
      throw Error(codes::kFailed, "Write refused.");
    }
    text += written;
  }
  void Flush() override { steps.Do("Flush"), ++flushes; }
};

// A request made of a query string, a form and server variables, decoded as a browser's is. Steps: QueryCount,
// QueryItem, QueryText, Item.
class FakeRequest : public Request {
 public:
  explicit FakeRequest(std::string_view query, std::string_view form = "")
      : query_(Parsed(query)), form_(Parsed(form)) {}

  Steps steps;
  bool sees = true;
  bool SeesCalls() const override { return sees; }
  std::map<std::string, std::string> variables = {{"URL", "/KalvoforExchange/Tasks/Page.asp"}};

  std::vector<std::string> QueryKeys() override;
  std::int32_t QueryCount(std::string_view key) override;
  std::string QueryItem(std::string_view key, std::int32_t i) override;
  std::string QueryText(std::string_view key) override { return steps.Do("QueryText", key), Joined(query_, key); }
  std::string ServerVariable(std::string_view name) override;
  std::string Item(std::string_view name) override;

 private:
  struct Parameter {
    std::string key;
    std::vector<std::string> values;
  };
  using Parameters = std::vector<Parameter>;
  static Parameters Parsed(std::string_view text);
  static const Parameter* Find(const Parameters& parameters, std::string_view key);
  static std::string Joined(const Parameters& parameters, std::string_view key);

  Parameters query_, form_;
};

// Encodes as the page host does. Steps: HTMLEncode, URLEncode.
class FakeServer : public Server {
 public:
  bool fails = false;
  bool sees = true;
  bool SeesCalls() const override { return sees; }
  Steps steps;

  void HTMLEncode(std::string& out, std::string_view text) override;
  void URLEncode(std::string& out, std::string_view text) override;
};

class FakeSession : public Session {
 public:
  bool sees = true;
  bool SeesCalls() const override { return sees; }
  std::map<std::string, Value> values;
  std::map<std::string, std::shared_ptr<LiveContainer>> objects;

  Value Item(std::string_view name) override;
  std::shared_ptr<LiveContainer> StaticObject(std::string_view name) override;
};

// The four objects of one page.
class FakePage : public ScriptingContext {
 public:
  explicit FakePage(std::string_view query = "", std::string_view form = "")
      : request(std::make_shared<FakeRequest>(query, form)) {}

  std::shared_ptr<FakeResponse> response = std::make_shared<FakeResponse>();
  std::shared_ptr<FakeRequest> request;
  std::shared_ptr<FakeSession> session = std::make_shared<FakeSession>();
  std::shared_ptr<FakeServer> server = std::make_shared<FakeServer>();
  Steps steps;

  // From now on nobody sees what the four are asked, as on a page without objects of its own.
  void LookAway() { response->sees = request->sees = session->sees = server->sees = false; }

  std::shared_ptr<Response> GetResponse() override { return steps.Do("Response"), response; }
  std::shared_ptr<Request> GetRequest() override { return steps.Do("Request"), request; }
  std::shared_ptr<Session> GetSession() override { return steps.Do("Session"), session; }
  std::shared_ptr<Server> GetServer() override { return steps.Do("Server"), server; }
};

}  // namespace kalvo::test
