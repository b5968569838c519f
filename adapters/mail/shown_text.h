#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "adapters/mail/mail_store.h"
#include "kalvo/platform/value.h"

namespace kalvo::mail {

// Text from a message or a folder name, fit to be shown: well-formed UTF-8 (each ill-formed piece becomes one U+FFFD),
// control characters and line ends as one blank, no blanks around it, cut after 500 characters with an ellipsis.
std::string CleanText(std::string_view raw);

// What stands for the subject of a message that cannot be read.
inline constexpr std::string_view kUnreadable = "(this message cannot be read)";
inline constexpr std::string_view kCompressed = "(this message is compressed and cannot be read)";

// What is listed behind the attachments of a message that has more parts than are looked at.
inline constexpr std::string_view kMoreParts = "(the rest of this message is not read)";

// "Bob <bob@example.com>", or whichever of the two there is. Decoded, not yet cleaned.
std::string SenderText(std::string_view name, std::string_view address);

// Whether a leaf part of a message counts as an attachment: it has a file name, is marked as one, or is not text.
// Words are matched without regard to case. No type is plain text.
bool IsAttachment(std::string_view type, std::string_view disposition, bool hasFileName);

// The name that an attachment is listed by, cleaned: its file name without folders, else its media type in small
// letters.
std::string AttachmentName(std::string_view fileName, std::string_view type, std::string_view subtype);

// Seconds since 1970 as a date of the host's time zone; empty for none and for years that no date has.
Value DateValue(std::optional<std::int64_t> seconds);

// A path text: names separated by backslashes; leading, trailing and doubled ones count for nothing.
FolderPath ParsePath(std::string_view path);
std::string PathText(const FolderPath& path);

// A folder name in the modified UTF-7 of mail stores, and back. Writing also encodes "." and "/" (which separate
// folders in stores) and control characters. Reading takes UTF-8 as it is, and a text that is neither as it stands.
std::string ToModifiedUtf7(std::string_view utf8);
std::string FromModifiedUtf7(std::string_view name);

}  // namespace kalvo::mail
