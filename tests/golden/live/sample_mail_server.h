#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "support/dovecot_server.h"
#include "support/temporary_folder.h"

namespace kalvo::test {

// An IMAP server that holds what the small sample's Maildir store does: the mailbox of alice and the public folders
// of SEA-EX01. Its directory names all mailboxes of the sample.
class SampleMailServer {
 public:
  SampleMailServer();

  DovecotServer& Server() { return server_; }

  // The address of the store for `--mail`. `port`: another than the server's, for one that stands in between.
  std::string Address(std::string_view more = "", std::uint16_t port = 0) const;

  // Every message, as the sample's own store has them.
  std::filesystem::path SampleMailbox() const { return sample_.Path() / "mail/SEA-EX01/alice"; }

 private:
  void TakeMailbox() const;
  void TakePublicFolders() const;
  void WriteDirectory() const;

  TemporaryFolder sample_;
  DovecotServer server_;
};

struct ProgramPage {
  std::filesystem::path root;
  std::string page;  // below the root
  std::string mail;  // the address of the mail store
  std::string query;
  std::string logon = "KALVO\\alice";
  std::string right = "";  // the session value that is "Yes"
};

// What `kalvo page` prints for a page of the console.
std::string RunProgram(const ProgramPage& page);

// A page with what differs from server to server and from day to day left out: the identifiers of messages and
// folders, as values and in addresses.
std::string WithoutIdentifiers(const std::string& html);

}  // namespace kalvo::test
