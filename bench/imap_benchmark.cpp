// The first page of 50 of a folder of 50 000 messages on an IMAP server, beside the commands that a client which
// knew everything beforehand would send. Starts a Dovecot of its own; runs as root.
#include <sys/stat.h>
#include <utime.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include "adapters/imap/imap_store.h"
#include "adapters/mail/browser.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "support/dovecot_server.h"

namespace {

using namespace kalvo;
namespace fs = std::filesystem;

constexpr int kRows = 50;

std::string Message(int number, int count) {
  char head[400];
  std::snprintf(head, sizeof head,
                "From: Sender %d <s%d@example.com>\nTo: alice@example.com\nSubject: Report %d of the week\n"
                "Date: %s, %02d Jan 1999 %02d:%02d:%02d +0000\nMessage-ID: <%d@example.com>\nMIME-Version: 1.0\n",
                number % 700, number % 700, number * 7919 % count, "Mon", 1 + number * 31 % 28, number % 24,
                number % 60, number * 7 % 60, number);
  std::string text = head;
  const std::string lines(1000 + number % 40 * 50, 'x');
  if (number % 5 != 0) return text + "Content-Type: text/plain\n\n" + lines + "\n";
  return text + "Content-Type: multipart/mixed; boundary=b\n\n--b\n\n" + lines +
         "\n--b\nContent-Type: application/pdf; name=a.pdf\nContent-Transfer-Encoding: base64\n\nQUJD\n--b--\n";
}

void Fill(const test::DovecotServer& server, int count) {
  test::PlainImap(server.Port(), "alice").Run("SELECT INBOX");
  const auto folder = server.Folder() + "/users/alice/Maildir/cur/";
  struct stat owner {};
  stat(folder.c_str(), &owner);
  for (int i = 0; i < count; ++i) {
    const auto path = Built([&](std::string& out) { Append(out, folder, 915148800 + i, ".M1P1.bench:2,S"); });
    std::ofstream(path) << Message(i, count);
    const utimbuf times{915148800 + i, 915148800 + i};
    utime(path.c_str(), &times);
    if (chown(path.c_str(), owner.st_uid, owner.st_gid) != 0) std::perror("chown");
  }
}

// Takes away what the server has remembered of the folder.
void Forget(test::DovecotServer& server) {
  server.Kill();
  for (const auto& entry : fs::directory_iterator(server.Folder() + "/users/alice/Maildir")) {
    const auto name = entry.path().filename().string();
    if (name.starts_with("dovecot.index") || name == "dovecot-uidlist") fs::remove(entry.path());
  }
  server.Start();
}

double Milliseconds(const std::function<void()>& step) {
  const auto begin = std::chrono::steady_clock::now();
  step();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

void Page(const std::shared_ptr<imap::ImapStore>& store, std::string_view field) {
  mail::Browser live(store);
  live.GotoContainer("EX01", "alice", "Inbox", 0, live::kByPath);
  const auto messages = live.Messages();
  if (live.MessageCount() != messages->Count()) std::printf("the counts differ\n");
  messages->ClearSortFields();
  messages->AddSortField(field, 1);
  messages->Sort();
  for (int i = 0; i < kRows; ++i, messages->MoveNext()) {
    for (const char* each : {"Name", "ExchangeId", "Sender", "Size", "CreateDate", "ModifiedDate", "HasAttachment"}) {
      ToText(messages->Field(each));
    }
  }
  ToText(messages->Total("Size"));
}

void Print(const char* what, const char* state, const std::shared_ptr<imap::ImapStore>& store,
           const std::function<void()>& step) {
  const auto before = store->Cost();
  const double time = Milliseconds(step);
  const auto& after = store->Cost();
  std::printf("%-28s %-12s %9.1f ms %8zu messages %8zu KiB\n", what, state, time,
              after.messagesFetched - before.messagesFetched, (after.bytesRead - before.bytesRead) / 1024);
}

}  // namespace

// The argument is the number of messages, when not 50 000.
int main(int argumentCount, char** arguments) {
  const int messageCount = argumentCount > 1 ? std::atoi(arguments[1]) : 50'000;
  test::DovecotServer server({"alice"});
  Fill(server, messageCount);
  server.Write("directory",
               "[server EX01]\n[mailbox Alice]\nserver = EX01\naccount = K\\alice\n"
               "address = alice@example.com\nlocation = alice\n");
  server.Write("password", "pw\n");
  const auto address = Built([&](std::string& out) {
    Append(out, "imap://master@127.0.0.1:", server.Port(),
           "/?tls=none&silence=60&time-limit=60&directory=", server.Folder(),
           "/directory&password-file=", server.Folder(), "/password");
  });
  std::printf("%d messages, first page of %d\n", messageCount, kRows);
  const struct {
    const char *what, *field, *more;
  } kPages[] = {
      {"by arrival", "ModifiedDate", ""},
      {"by date", "CreateDate", ""},
      {"by date, sorted here", "CreateDate", "&sort=no"},
      {"by size", "Size", ""},
      {"by subject", "Name", ""},
  };
  for (const auto& page : kPages) {
    Forget(server);
    auto store = std::make_shared<imap::ImapStore>(imap::ReadSettings(address + page.more));
    Print(page.what, "no index", store, [&] { Page(store, page.field); });
    store = std::make_shared<imap::ImapStore>(imap::ReadSettings(address + page.more));
    Print(page.what, "new process", store, [&] { Page(store, page.field); });
    Print(page.what, "next page", store, [&] { Page(store, page.field); });
  }
  const auto bare = [&] {
    test::PlainImap imap(server.Port(), "alice");
    imap.Run("EXAMINE INBOX");
    imap.Run("UID SORT (REVERSE DATE) UTF-8 ALL");
    imap.Run("FETCH 1:50 (UID RFC822.SIZE INTERNALDATE ENVELOPE BODYSTRUCTURE)");
  };
  std::printf("%-28s %-12s %9.1f ms\n", "the bare commands, by date", "", Milliseconds(bare));
}
