#pragma once

#include <memory>
#include <string_view>

#include "kalvo/platform/error.h"
#include "kalvo/platform/locale.h"

namespace kalvo {

class Context;
class Display;
class Response;
struct MessageStore;

// One showing of a message: what it is, and the form that deletes it. A step that fails is reported or left out.
class MessageDetails {
 public:
  // `response` is the member of the page, which is looked up for each write.
  MessageDetails(Context& context, Display& display, const std::shared_ptr<Response>& response, const Locale& locale)
      : context_(context), display_(display), response_(response), locale_(locale) {}

  void Show(std::string_view server, std::string_view mailbox, std::string_view container, std::string_view message,
            const MessageStore& store);

 private:
  struct Shown;
  void Write(const Shown& shown, std::string_view form);
  template <typename Maker>
  void WriteRow(std::string_view heading, Maker&& maker);

  Context& context_;
  Display& display_;
  const std::shared_ptr<Response>& response_;
  const Locale& locale_;
  Trap trap_;
};

}  // namespace kalvo
