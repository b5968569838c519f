#include "golden/live/sample_site.h"

#include <cstdlib>
#include <ctime>

#include "database/sample_mail/sample_mail.h"
#include "host/web/acting/acting_session.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/live_mailbox.h"

namespace kalvo::test {
namespace {

class KeepingSink : public host::PageSink {
 public:
  explicit KeepingSink(SampleSite::Answer& answer) : answer_(answer) {}
  void Head(const host::PageHead& head) override { answer_.head = head; }
  void Body(std::string_view bytes) override { answer_.body += bytes; }

 private:
  SampleSite::Answer& answer_;
};

host::PartsSettings Settings(const std::filesystem::path& folder) {
  host::PartsSettings settings;
  settings.database = "sqlite:" + (folder / "kalvo.db").string();
  settings.mail = "maildir:" + (folder / "mail").string();
  return settings;
}

}  // namespace

SampleSite::SampleSite() {
  setenv("TZ", "UTC", 1);
  tzset();
  sample::SilentProgress quiet;
  const sample::SampleOptions options{folder_.Path(), sample::SampleSize::Small, 1, sample::SampleMail::Users};
  sample::MakeSample(options, quiet);
  sample::MakeSampleMail(options, quiet);
  parts_ = std::make_unique<host::Parts>(Settings(folder_.Path()));
}

SampleSite::Answer SampleSite::Run(const std::filesystem::path& root, const std::string& page, const std::string& query,
                                   const std::string& logon, const std::vector<std::string>& rights,
                                   const std::string& form) {
  host::NamedTexts values;
  for (const std::string& right : rights) values.emplace_back(right, "Yes");
  host::MemorySession session(values, parts_->GetLiveDrillerMaker());
  host::PageRequest request;
  request.url = "/KalvoforExchange/" + page;
  request.queryString = query;
  request.logonName = logon;
  request.form = form;
  if (!form.empty()) request.method = "POST";
  web::ActingSession acting(session, {tokens_, trail_, parts_->GetMailStore(), 14},
                            {logon, {logon, ""}, !form.empty()});
  Answer answer;
  KeepingSink sink(answer);
  const host::PageResult result = host::Site(root, parts_->GetPlatform()).Run(page, request, acting, sink);
  if (result.failure) answer.body += "PAGE FAILED: " + host::Describe(*result.failure);
  return answer;
}

std::string FirstBy(LiveContainer& live, const std::string& field) {
  const auto messages = live.Messages();
  messages->AddSortField(field, 1);
  messages->Sort();
  return ToText(messages->Field("ExchangeId"));
}

std::string Encoded(const std::string& text) {
  constexpr char digits[] = "0123456789ABCDEF";
  std::string out;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    out += '%';
    out += digits[byte >> 4];
    out += digits[byte & 15];
  }
  return out;
}

}  // namespace kalvo::test
