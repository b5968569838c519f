#pragma once

#include <string>
#include <string_view>

#include "host/script/engine/engine.h"
#include "host/script/page/page_result.h"
#include "kalvo/platform/page_host.h"

namespace kalvo::host {

// The response of the running page: buffered until it is flushed. Every write looks at the page's limits.
class ResponseObject : public Response {
 public:
  ResponseObject(Engine& engine, PageSink& sink) : engine_(engine), sink_(sink) {}

  bool SeesCalls() const override { return false; }
  void Write(std::string_view text) override;
  void Flush() override;

  // Forgets what was written and not flushed.
  void Clear();

  // Ends the page. What was written is sent.
  void End() { engine_.End(EndCause::Response); }

  // Sends the browser elsewhere and ends the page. Fails once the head is sent.
  void Redirect(std::string_view url);

  // "404 Not Found"
  std::string Status() const;
  void SetStatus(std::string_view status);
  std::string ContentType() const { return contentType_; }
  void SetContentType(std::string_view type);
  void AddHeader(std::string_view name, std::string_view value);

  // Sends what is left at the end of the page, whatever the page's limits are by then.
  void Finish() { Send(); }

  bool HeadSent() const { return headSent_; }
  PageHead Head() const;
  std::string TakeBuffer() { return std::move(buffer_); }

  // What a sink threw, for the caller of the page.
  std::exception_ptr SinkFailure() const { return sinkFailure_; }

 private:
  void RequireHead() const;
  void Send();

  Engine& engine_;
  PageSink& sink_;
  PageHead head_;
  std::string contentType_ = "text/html";
  std::string buffer_;
  bool headSent_ = false;
  std::exception_ptr sinkFailure_;
};

}  // namespace kalvo::host
