#include "host/web/acting/sender.h"

#include "kalvo/platform/conversion.h"

namespace kalvo::web {

std::string_view VariableOf(const host::PageRequest& request, std::string_view name) {
  for (const auto& [key, value] : request.serverVariables) {
    if (key == name) return value;
  }
  return "";
}

Sender SenderOf(const host::PageRequest& request) {
  const std::string_view site = VariableOf(request, "HTTP_SEC_FETCH_SITE");
  if (site == "same-origin") return Sender::ThisSite;
  if (!site.empty() && site != "none") return Sender::Elsewhere;
  const std::string_view origin = VariableOf(request, "HTTP_ORIGIN");
  if (origin.empty()) return site.empty() ? Sender::Untold : Sender::ThisSite;
  const std::size_t host = origin.find("://");
  const bool fits =
      host != std::string::npos && EqualsIgnoringAsciiCase(origin.substr(host + 3), VariableOf(request, "HTTP_HOST"));
  return fits ? Sender::ThisSite : Sender::Elsewhere;
}

}  // namespace kalvo::web
