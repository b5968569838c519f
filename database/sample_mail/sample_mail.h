#pragma once

#include <filesystem>

#include "database/sample/organization.h"
#include "database/sample/sample.h"

namespace kalvo::sample {

// Makes the mail store of the sample's organization: OUT/mail, with a file "mailboxes.txt" and Maildir++ trees for
// its first few hundred mailboxes and for public folders. Two mailboxes stand beside the organization's own:
//
//   KALVO\alice    alice@kalvo.example    an ordinary user, with more messages than fit on a page
//   KALVO\admin    admin@kalvo.example    an administrator
//
// A store of that name is replaced only when it is a sample too. The same options give the same files, times and
// identifiers, on every machine. Fails with kalvo::Error.
//
// With `SampleMail::Users` the file names the same mailboxes, but those of the organization have no trees; what is
// made is what `All` makes. With `None` nothing is made.
void MakeSampleMail(const SampleOptions& options, Progress& progress);

// The same, of an organization that was made before.
void MakeSampleMail(const Organization& organization, const std::filesystem::path& out, SampleMail mail,
                    Progress& progress);

// The server that holds the mailboxes of alice and admin.
const Server& HomeOfSampleUsers(const Organization& organization);

}  // namespace kalvo::sample
