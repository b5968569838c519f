#pragma once

#include <string_view>

#include "host/script/page/page_request.h"

namespace kalvo::web {

// Where the page stands that a browser sent a request from, as the browser itself tells it: no page can write these
// headers.
enum class Sender {
  ThisSite,   // a page of this site, or the user's own hand
  Elsewhere,  // a page of any other origin: another site, another port, another name of the same domain
  Untold,     // an old browser, or no browser
};

Sender SenderOf(const host::PageRequest& request);

// A further server variable or header of the request; "" when it has none of that name.
std::string_view VariableOf(const host::PageRequest& request, std::string_view name);

}  // namespace kalvo::web
