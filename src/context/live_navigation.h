#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kalvo/platform/error.h"

namespace kalvo {

class Context;
class LiveContainer;

// A folder of a mail store, as the live mailbox component is sent to it.
struct FolderPlace {
  std::string_view server, mailbox, container;
  std::int32_t threshold = 0, flags = 0;
};

// A message of one.
struct MessagePlace {
  std::string_view server, mailbox, message;
  bool ofMailbox = false;
};

// The two navigation calls of the live mailbox component, with their failures reported on the page. True is a failure;
// nothing is raised.
class LiveNavigation {
 public:
  // The next call is the page's first. The message that was opened last is remembered.
  void Start() { last_ = Call::None; }

  bool OpenFolder(const Context& context, LiveContainer& live, const FolderPlace& place, std::string_view description,
                  bool tellsMissingFolder);

  // A message on which the component stands already is not opened again.
  bool OpenMessage(const Context& context, LiveContainer& live, const MessagePlace& place,
                   std::string_view description);

 private:
  enum class Call : std::uint8_t { None, Folder, Message };

  bool StandsOn(const MessagePlace& place) const;
  void Remember(const MessagePlace& place);
  void ReportMessage(Trap& trap, const Context& context, const MessagePlace& place, std::string_view description);

  Call last_ = Call::None;
  std::string server_, mailbox_, message_;  // of the last message
  bool ofMailbox_ = false;
  bool failed_ = false;
};

}  // namespace kalvo
