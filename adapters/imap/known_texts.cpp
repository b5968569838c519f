#include "adapters/imap/known_texts.h"

namespace kalvo::imap {

void KnownTexts::Add(std::uint32_t uid, const mail::HeadTexts& head) {
  const auto bytes = [](const std::string& text) { return static_cast<std::uint32_t>(text.size()); };
  const Place place{bytes_.size(), bytes(head.subject), bytes(head.sender), head.sent};
  if (!places_.emplace(uid, place).second) return;
  bytes_ += head.subject;
  bytes_ += head.sender;
}

KnownTexts::Texts KnownTexts::Of(std::uint32_t uid) const {
  const auto found = places_.find(uid);
  if (found == places_.end()) return {};
  const Place& place = found->second;
  const std::string_view texts = std::string_view(bytes_).substr(place.at);
  return {texts.substr(0, place.subjectBytes), texts.substr(place.subjectBytes, place.senderBytes), place.sent};
}

}  // namespace kalvo::imap
