#include "database/sample/mail_names.h"

#include <random>

#include "adapters/mail/shown_text.h"
#include "kalvo/platform/append.h"

namespace kalvo::sample {

SampleKey RandomSampleKey() {
  std::random_device random;  // the system's own
  SampleKey key;
  for (std::uint8_t& byte : key) byte = static_cast<std::uint8_t>(random() & 0xFF);
  return key;
}

mail::IdentifierKey MailKey(const Organization& organization) {
  if (organization.key) return *organization.key;
  Random random = organization.RandomFor("identifiers");
  mail::IdentifierKey key;
  for (std::uint8_t& byte : key) byte = static_cast<std::uint8_t>(random.Below(256));
  return key;
}

std::string MaildirName(std::string_view path) {
  return Built([&](std::string& name) {
    for (const std::string& step : mail::ParsePath(path)) {
      const bool isInbox = name.empty() && step == "Inbox";
      Append(name, name.empty() ? "" : ".", isInbox ? "INBOX" : mail::ToModifiedUtf7(step));
    }
  });
}

std::string PublicFolderIdentifier(const Organization& organization, const PublicFolder& folder) {
  const mail::IdentifierKey key = MailKey(organization);
  return mail::FolderIdentifier({key, organization.servers[folder.server].computerName, ""}, MaildirName(folder.path));
}

}  // namespace kalvo::sample
