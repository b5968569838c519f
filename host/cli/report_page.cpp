#include "host/cli/report_page.h"

#include "host/script/page/request.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/encoding.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/page_host.h"
#include "kalvo/table_generator.h"

namespace kalvo::host {
namespace {

class TextResponse : public Response {
 public:
  bool SeesCalls() const override { return false; }
  void Write(std::string_view piece) override { text += piece; }
  void Flush() override {}
  std::string text;
};

class Encoders : public Server {
 public:
  bool SeesCalls() const override { return false; }
  void HTMLEncode(std::string& out, std::string_view text) override { AppendHtmlEncoded(out, text); }
  void URLEncode(std::string& out, std::string_view text) override { AppendUrlEncoded(out, text); }
};

class RightsSession : public Session {
 public:
  explicit RightsSession(bool administrator) : administrator_(administrator) {}
  bool SeesCalls() const override { return false; }
  Value Item(std::string_view name) override {
    return administrator_ && EqualsIgnoringCase(name, "KalvoAdministrator") ? Value(std::string("Yes"))
                                                                            : Value(Empty());
  }
  std::shared_ptr<LiveContainer> StaticObject(std::string_view) override { throw ObjectRequired(); }

 private:
  bool administrator_;
};

class PageObjects : public ScriptingContext {
 public:
  PageObjects(const PageRequest& request, bool administrator)
      : request_(std::make_shared<RequestObject>(request)), session_(std::make_shared<RightsSession>(administrator)) {}
  std::shared_ptr<Response> GetResponse() override { return response; }
  std::shared_ptr<Request> GetRequest() override { return request_; }
  std::shared_ptr<Session> GetSession() override { return session_; }
  std::shared_ptr<Server> GetServer() override { return server_; }

  const std::shared_ptr<TextResponse> response = std::make_shared<TextResponse>();

 private:
  std::shared_ptr<Request> request_;
  std::shared_ptr<Session> session_;
  std::shared_ptr<Server> server_ = std::make_shared<Encoders>();
};

// HTML as a reader sees it: no tags, the entities that a failure uses read, blanks joined.
std::string PlainText(std::string_view html) {
  std::string out;
  bool inTag = false;
  for (std::size_t at = 0; at < html.size(); ++at) {
    if (html[at] == '<') inTag = true;
    char c = inTag ? ' ' : html[at];
    if (html[at] == '>') inTag = false;
    for (const auto& [entity, letter] :
         {std::pair{"&nbsp;", ' '}, {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}}) {
      if (!inTag && html.substr(at).starts_with(entity)) c = letter, at += std::string_view(entity).size() - 1;
    }
    if (std::isspace(static_cast<unsigned char>(c))) c = ' ';
    if (c != ' ' || (!out.empty() && out.back() != ' ')) out += c;
  }
  while (!out.empty() && out.back() == ' ') out.pop_back();
  return out;
}

}  // namespace

void ReportPage::AddParameter(std::string_view key, std::string_view value) {
  if (!query_.empty()) query_ += '&';
  AppendUrlEncoded(query_, key);
  query_ += '=';
  AppendUrlEncoded(query_, value);
}

std::string ReportPage::Build(KalvoTableConstants id, const ReportScope& scope) const {
  PageRequest request;
  request.url = "/Report.asp";
  request.queryString = query_;
  const auto page = std::make_shared<PageObjects>(request, administrator_);
  const auto generator = std::make_shared<KalvoforExchangeTableGenerator>(platform_);
  generator->OnStartPage(*page);
  generator->BuildTable(id, scope.name, scope.organization, scope.site, scope.mailbox, "", scope.topN);
  generator->OnEndPage();
  return page->response->text;
}

std::vector<std::string> FailuresOf(std::string_view html) {
  static constexpr std::string_view kBegins = "Error Generating Table:";
  std::vector<std::string> failures;
  for (std::size_t at = 0; (at = html.find(kBegins, at)) != std::string::npos;) {
    at += kBegins.size();
    failures.push_back(PlainText(html.substr(at, html.find("</p>", at) - at)));
  }
  return failures;
}

}  // namespace kalvo::host
