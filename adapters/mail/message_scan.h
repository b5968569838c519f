#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/mail/mail_limits.h"

namespace kalvo::mail {

// What a message may cost beside the limits of all mail stores.
inline constexpr int kMostFieldLines = 1000;
inline constexpr std::size_t kDeepestParts = 50;

// The fields of a head that are of use here, as they stand, line ends and all, cut where they get too long; "" for one
// that is not there. Of several of a name the first counts. All others are passed over and cost nothing.
struct Head {
  std::string_view from, subject, date;
  std::string_view contentType, contentDisposition, contentEncoding;
};

// How a part says that it is made of parts; the scanner asks for every head, whoever knows the grammar answers.
struct Multipart {
  std::string boundary;
  bool isDigest = false;  // its parts are messages where they do not say otherwise
};
using AskMultipart = std::function<std::optional<Multipart>(const Head& head)>;

// A part that has no parts: its head and its content, not decoded. A message inside a message is such a part.
struct Leaf {
  Head head;
  std::string_view content;
  bool isMessage = false;  // where its head does not say otherwise
};

// Takes a message apart, front to back, each byte looked at once: its head first, then its leaves in their order.
// Texts are pieces of the message. A text that is not a message has an empty head, and does no harm.
class MessageScan {
 public:
  MessageScan(std::string_view message, AskMultipart askMultipart);

  const Head& Top() const { return top_; }

  // The next leaf; nothing at the end, or once there were as many parts as we look at.
  std::optional<Leaf> Next();

  // Whether it stopped because there were so many.
  bool HasMore() const { return parts_ > kMostParts; }

 private:
  struct Delimiter {
    std::size_t start = 0;                  // of its line
    std::size_t level = std::string::npos;  // whose it is among the open ones; npos: the text is at its end
    bool closes = false;
  };

  Head ReadHead();
  Delimiter FindDelimiter();
  Delimiter DelimiterAt(std::string_view line) const;
  std::string_view Line() const;
  void Pass(const Delimiter& delimiter);
  std::string_view Content(std::size_t begin, const Delimiter& delimiter) const;

  std::string_view text_;
  std::size_t at_ = 0;
  AskMultipart askMultipart_;
  std::vector<Multipart> open_;
  Head top_, head_;
  bool hasHead_ = true;  // `head_` is the one of the part that comes next
  bool isMessage_ = false;
  std::size_t parts_ = 0;
};

}  // namespace kalvo::mail
