#include "kalvo/display.h"

#include "display/images.h"
#include "kalvo/platform/page_host.h"

namespace kalvo {

Display::Display(const Locale& locale)
    : locale_(locale),
      message_(images::kMessage),
      folder_(images::kFolder),
      attachment_(images::kAttachment),
      noAttachment_(images::kNoAttachment) {}

void Display::OnStartPage(ScriptingContext& ASPScriptingContext) {
  response_ = ASPScriptingContext.GetResponse();
  request_ = ASPScriptingContext.GetRequest();
  session_ = ASPScriptingContext.GetSession();
  server_ = ASPScriptingContext.GetServer();
  bookmark_.clear();
}

void Display::OnEndPage() {
  response_.reset();
  request_.reset();
  session_.reset();
  server_.reset();
}

}  // namespace kalvo
