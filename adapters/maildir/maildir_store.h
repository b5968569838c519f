#pragma once

#include <memory>
#include <string>

namespace kalvo {
class LiveContainer;
}
namespace kalvo::mail {
class MailStore;
}

namespace kalvo::maildir {

struct Work;

// A mail store in a folder of this machine:
//
//   mailboxes.txt     the servers, mailboxes, owners and addresses (adapters/mail/directory_file.h)
//   <location>        a Maildir++ tree for each mailbox: cur, new, tmp, and a folder ".Sub.Folder" for each folder
//   <location>        the same for a server's public folders, without messages at the top
//   .kalvo/           made by us: the key of the identifiers, an index for each folder, and the deleted messages
//                     for as long as they are held
//
// Locations are paths below the store; nothing outside of it is ever opened. The store outlives its browsing
// objects, which keep it alive; one thread at a time.
class MaildirStore {
 public:
  // Opens a store and reads its mailboxes. Fails with 0x80004005 where there is no such folder, and names file and line
  // of what is wrong with the mailboxes.
  explicit MaildirStore(const std::string& folder);
  ~MaildirStore();

  // A browsing object for one session.
  std::shared_ptr<LiveContainer> Open();

  // The same store as those who delete, undo and sweep use it.
  std::shared_ptr<mail::MailStore> Store();

  // What was done since the store was opened.
  const Work& Done() const;

 private:
  class Trees;
  std::shared_ptr<Trees> trees_;
};

}  // namespace kalvo::maildir
