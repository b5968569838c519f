#pragma once

#include <string>
#include <string_view>

#include "host/script/page/page_directive.h"
#include "host/script/page/page_request.h"
#include "host/script/page/page_result.h"

struct FCGX_Request;

namespace kalvo::web {

// A request as nginx handed it over.
struct FastCgiRequest {
  std::string page;  // the page's path below the site's root
  host::PageRequest request;
  bool complete = true;  // false: the posted body ended early, or is larger than is taken
};

// The largest posted body, in bytes; nginx refuses larger ones before.
inline constexpr std::size_t kLargestBody = 1024 * 1024;

// Reads parameters and body. A body is a form only when its type says so.
FastCgiRequest ReadRequest(FCGX_Request& request);

// Thrown when the visitor, or nginx, has hung up.
struct VisitorGone {};

// Sends a response back to nginx, with the headers that every answer has. Throws VisitorGone.
class FastCgiSink : public host::PageSink {
 public:
  // `directive` is what the page declares.
  explicit FastCgiSink(FCGX_Request& request, const host::PageDirective& directive = {});

  void Head(const host::PageHead& head) override;
  void Body(std::string_view bytes) override;

 private:
  void Put(std::string_view bytes);
  FCGX_Request& request_;
  std::string policy_;
};

}  // namespace kalvo::web
