#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "adapters/mail/message_head.h"

namespace kalvo::imap {

// What the heads of a folder's messages say, by UID: for orders by text, which need all of them. Kept close together,
// as a folder may have hundreds of thousands.
class KnownTexts {
 public:
  struct Texts {
    std::string_view subject, sender;
    std::optional<std::int64_t> sent;
  };

  void Add(std::uint32_t uid, const mail::HeadTexts& head);
  bool Has(std::uint32_t uid) const { return places_.contains(uid); }

  // Valid until the next one is added; empty for a message that is not known.
  Texts Of(std::uint32_t uid) const;

 private:
  struct Place {
    std::size_t at;
    std::uint32_t subjectBytes, senderBytes;
    std::optional<std::int64_t> sent;
  };

  std::string bytes_;
  std::unordered_map<std::uint32_t, Place> places_;
};

}  // namespace kalvo::imap
