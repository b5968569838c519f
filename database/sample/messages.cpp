#include "database/sample/messages.h"

namespace kalvo::sample {
namespace {

constexpr std::int64_t kKiB = 1024;
constexpr std::int64_t kTypicalAge = 45 * 86'400;  // seconds
constexpr std::int64_t kAttachmentSize = 32 * kKiB;

// A circular that everybody got on the same day: the reports show what they do with equal ones.
constexpr std::int64_t kCircularSize = 512 * kKiB;
constexpr std::int64_t kCircularAge = 220 * 86'400;
constexpr std::int64_t kRoomForCircular = 4 * kCircularSize;

void AddDates(Random& random, Moment scan, std::vector<Message>& messages) {
  for (Message& message : messages) {
    const std::int64_t age = kTypicalAge * random.SkewedThousandths() / 1000 + random.Below(86'400);
    if (!random.OneIn(300)) message.modified = scan.Before(0, age);
    message.folder = static_cast<std::uint8_t>(random.OneIn(2) ? random.Below(kFoldersAMailbox) : 0);
  }
}

}  // namespace

void MakeMessages(Random& random, std::int32_t count, std::int64_t space, Moment scan, std::vector<Message>& messages) {
  messages.assign(static_cast<std::size_t>(count), {});
  if (messages.empty()) return;
  AddDates(random, scan, messages);
  std::size_t first = 0;
  if (count > 1 && space > kRoomForCircular) {
    messages[0] = {kCircularSize, Moment{scan.seconds / 86'400 * 86'400 - kCircularAge}, 0, true};
    space -= kCircularSize;
    first = 1;
  }
  std::int64_t weights = 0;
  for (std::size_t i = first; i < messages.size(); ++i) weights += messages[i].size = random.SkewedThousandths();
  std::int64_t left = space;
  for (std::size_t i = first; i < messages.size(); ++i) {
    Message& message = messages[i];
    left -= message.size = space * message.size / weights;
    if (i + 1 == messages.size()) message.size += left;
    message.hasAttachment = message.size >= kAttachmentSize;
  }
}

}  // namespace kalvo::sample
