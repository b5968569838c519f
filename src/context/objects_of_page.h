#pragma once

#include <memory>

#include "kalvo/platform/page_host.h"

namespace kalvo {

// The four objects of the page that a context is on; null outside of one.
struct PageObjects {
  std::shared_ptr<Response> response;
  std::shared_ptr<Request> request;
  std::shared_ptr<Session> session;
  std::shared_ptr<Server> server;
};

}  // namespace kalvo
