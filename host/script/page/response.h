#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "host/script/binding/arguments.h"
#include "host/script/engine/engine.h"
#include "host/script/page/page_result.h"
#include "host/script/page/response_cookies.h"
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

  // Bytes as they are: an image, an archive. The page sets the type that fits.
  void BinaryWrite(const RawBytes& bytes) { Write(bytes.bytes); }

  // Sends the browser elsewhere and ends the page. What cannot stand in an address is encoded. Fails without an
  // address, and once the head is sent.
  void Redirect(std::string_view url);

  // "404 Not Found"
  std::string Status() const;
  void SetStatus(std::string_view status);
  std::string ContentType() const { return contentType_; }
  void SetContentType(std::string_view type);

  // Headers that the sender adds itself, such as Content-Length, are refused.
  void AddHeader(std::string_view name, std::string_view value);

  // Who may keep the page: the text of its Cache-Control header. `Expires` is the same in minutes from now; 0 and less
  // is not at all.
  std::string CacheControl() const { return cacheControl_; }
  void SetCacheControl(std::string_view text);
  std::int32_t Expires() const { return expires_; }
  void SetExpires(std::int32_t minutes);

  // Every page is sent as UTF-8: no other name is taken.
  std::string Charset() const { return "utf-8"; }
  void SetCharset(std::string_view name);

  // Whether what is written waits for the page's end or a flush.
  bool Buffer() const { return buffers_; }
  void SetBuffer(bool buffers) { buffers_ = buffers; }

  std::shared_ptr<ResponseCookies> Cookies() const { return cookies_; }

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
  std::string cacheControl_;
  std::int32_t expires_ = 0;
  bool buffers_ = true;
  bool headSent_ = false;
  std::shared_ptr<ResponseCookies> cookies_ = std::make_shared<ResponseCookies>();
  std::exception_ptr sinkFailure_;
};

}  // namespace kalvo::host
