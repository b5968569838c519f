#include "adapters/maildir/message_reader.h"

#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "adapters/maildir/files.h"
#include "fuzz/targets.h"
#include "host/script/text/text.h"

namespace kalvo::test {

void MimeMessage(std::string_view bytes) {
  const base::File file(memfd_create("message", MFD_CLOEXEC));
  Require(write(file.Handle(), bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()), "a file is made");
  for (const auto what : {maildir::Read::Listing, maildir::Read::Attachments}) {
    const maildir::MessageContent content = maildir::ReadMessage(file, what);
    for (const std::string* text : {&content.subject, &content.sender}) {
      Require(host::WellFormed(*text) == *text, "text of a message is well-formed");
    }
    Require(what == maildir::Read::Attachments || content.attachments.empty(), "a listing reads no attachments");
    for (const mail::Attachment& attachment : content.attachments) {
      Require(attachment.size >= 0 && !attachment.name.empty(), "an attachment has a name and a size");
    }
  }
}

}  // namespace kalvo::test
