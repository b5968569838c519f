#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "kalvo/enumerations.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/locale.h"

namespace kalvo {

class Context;
class Listing;
class LiveContainer;
class Response;

// One showing of where the user is: the mailbox and the folder path above a live listing, each step of it a link. A
// step that fails is reported; what was written before it stays.
class FolderPath {
 public:
  // Shows the mailboxes of a server whose names fit a pattern ("Ken%").
  using ShowCandidates = std::function<void(std::string_view server, std::string_view pattern)>;

  // `response` is the member of the page, which is looked up for each write.
  FolderPath(Context& context, const std::shared_ptr<Response>& response, const Locale& locale,
             ShowCandidates showCandidates)
      : context_(context), response_(response), locale_(locale), showCandidates_(std::move(showCandidates)) {}

  // Writes the path. `mailbox` is replaced by the address that it was found to mean. True when the path was written, or
  // when there is no mailbox.
  bool Show(std::string_view server, std::string& mailbox, std::string_view container, std::string_view folderId,
            KalvoTableConstants table);

 private:
  bool Resolve(LiveContainer& live, std::string_view server, std::string& mailbox);
  bool Explain(std::string_view server, std::string_view mailbox);
  bool TakeAddress(LiveContainer& live, Listing& candidates, std::string_view server, std::string& mailbox);
  bool WritePublicFolder();
  void WriteMailbox(std::string_view server, std::string_view mailbox);
  bool WriteFolderById(LiveContainer& live, std::string_view server, std::string_view mailbox,
                       std::string_view folderId);
  void WriteContainer(std::string_view server, std::string_view mailbox, std::string_view container);
  void Write(std::string_view text);
  template <typename Maker>
  void WriteMade(Maker&& maker);

  Context& context_;
  const std::shared_ptr<Response>& response_;
  const Locale& locale_;
  const ShowCandidates showCandidates_;
  Trap trap_;
};

// The path of the public folder that the request names: "" when it names none, nothing after a failure, which has been
// reported.
std::optional<std::string> PublicFolderPath(Context& context);

}  // namespace kalvo
