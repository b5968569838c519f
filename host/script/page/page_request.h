#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kalvo::host {

using NamedTexts = std::vector<std::pair<std::string, std::string>>;

// What a page is asked for, as it came: nothing is decoded yet. Ill-formed UTF-8 becomes U+FFFD before a script
// sees it.
struct PageRequest {
  std::string method = "GET";
  std::string url;             // the path: ServerVariables("URL")
  std::string queryString;     // without "?"
  std::string form;            // an URL-encoded body; "" when there is none
  std::string body;            // a body of any other type
  std::string cookies;         // the Cookie header
  std::string logonName;       // ServerVariables("LOGON_USER")
  NamedTexts serverVariables;  // further ones, such as "REMOTE_ADDR" and "HTTP_USER_AGENT"
};

}  // namespace kalvo::host
