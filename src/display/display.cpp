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
  // Kept: all four are taken, although the encoder alone is needed: a page's own scripting context sees that it is
  // asked.
  ASPScriptingContext.GetResponse();
  ASPScriptingContext.GetRequest();
  ASPScriptingContext.GetSession();
  server_ = ASPScriptingContext.GetServer();
  bookmark_.clear();
}

bool Display::SeesCalls() const { return !server_ || server_->SeesCalls(); }

void Display::OnEndPage() { server_.reset(); }

}  // namespace kalvo
