#include "database/sample_mail/sample_mail.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <string>

#include "database/sample/mail_names.h"
#include "database/sample/messages.h"
#include "database/sample_mail/mail_text.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/error.h"

namespace kalvo::sample {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostMailboxes = 400;
constexpr std::int64_t kMostMessages = 24, kMostPublicMessages = 12, kAlicesMessages = 75;  // in one folder
constexpr std::string_view kMark = "# The sample's servers and mailboxes; made by `kalvo sample`, which replaces it.\n";

// clang-format off
constexpr std::string_view kOwnFolders[] = {
  "Projects\\Aurora", "Entwürfe", "Éléments envoyés", "Отчёты\\2026", "プロジェクト", "ملفات", "Invoices & \"bills\"",
  "a/b", "<script>alert(1)</script>", "Read\tme", "v1.2",
};
// clang-format on

[[noreturn]] void Fail(std::string_view what, const fs::path& where) {
  throw Error(codes::kFailed, Built([&](std::string& out) { Append(out, what, " ", where.string()); }));
}

void SetTime(const fs::path& file, Moment moment) {
  const timespec time{static_cast<std::time_t>(moment.seconds), 0}, times[2] = {time, time};
  if (utimensat(AT_FDCWD, file.c_str(), times, 0) != 0) Fail("cannot set the time of", file);
}

void WriteFile(const fs::path& file, std::string_view content) {
  std::ofstream out(file, std::ios::binary);
  out.write(content.data(), static_cast<std::streamsize>(content.size()));
  if (!out.flush()) Fail("cannot write", file);
}

std::string FolderName(std::string_view path) {
  const std::string name = MaildirName(path);
  return name == "INBOX" ? "" : "." + name;
}

class MailWriter {
 public:
  MailWriter(const Organization& organization, SampleMail mail, fs::path store)
      : organization_(organization), mail_(mail), store_(std::move(store)) {}

  void Write(Progress& progress) {
    progress.Step("the mail store");
    text_ = kMark;
    for (const Server& server : organization_.servers) AppendServer(server);
    const Server& home = HomeOfSampleUsers(organization_);
    WriteUser("Alice Archer", "alice", home, kAlicesMessages);
    WriteUser("Administrator", "admin", home, 3);
    const std::size_t count = std::min(organization_.mailboxes.size(), kMostMailboxes);
    for (std::size_t i = 0; i < count; ++i) {
      WriteMailbox(organization_.mailboxes[i]);
      if (i % 20 == 0) progress.Rows(static_cast<std::int64_t>(i), static_cast<std::int64_t>(count));
    }
    for (const PublicFolder& folder : organization_.publicFolders) WritePublicFolder(folder);
    WriteFile(store_ / "mailboxes.txt", text_);
    WriteKey();
  }

 private:
  void AppendServer(const Server& server) {
    Append(text_, "\n[server ", server.computerName, "]\n");
    if (server.publicFolderCount > 0) Append(text_, "public = ", PublicLocation(server), "\n");
  }

  static std::string PublicLocation(const Server& server) { return server.computerName + "/public"; }

  void AppendMailbox(std::string_view name, const Server& server, std::string_view account, std::string_view alias,
                     std::string_view distinguishedName) {
    Append(text_, "\n[mailbox ", name, "]\nserver = ", server.computerName, "\naccount = ", account,
           "\naddress = ", alias, "@kalvo.example\ndn = ", distinguishedName, "\nlocation = ", server.computerName, "/",
           alias, "\n");
  }

  void WriteUser(std::string_view name, std::string_view alias, const Server& server, std::int64_t messages) {
    AppendMailbox(name, server, Built([&](std::string& out) { Append(out, server.domain, "\\", alias); }), alias,
                  Built([&](std::string& out) {
                    Append(out, "/O=", server.organization, "/OU=", server.site, "/CN=Recipients/CN=", alias);
                  }));
    Random random = organization_.RandomFor(alias);
    WriteTree(server, alias, random, messages, std::size(kOwnFolders));
  }

  void WriteMailbox(const Mailbox& mailbox) {
    const Server& server = organization_.servers[mailbox.server];
    const std::string alias = Alias(mailbox);
    AppendMailbox(DisplayName(mailbox), server, OwnerAccount(organization_, mailbox), alias,
                  DistinguishedName(organization_, mailbox));
    if (mail_ != SampleMail::All) return;
    Random random = organization_.RandomFor(alias);
    const std::int64_t most = mailbox.messages == 0 ? 0 : 1 + random.Below(kMostMessages);
    WriteTree(server, alias, random, most, static_cast<std::size_t>(random.Below(4)));
  }

  void WriteTree(const Server& server, std::string_view alias, Random& random, std::int64_t messages,
                 std::size_t ownFolders) {
    const fs::path tree = store_ / server.computerName / alias;
    const std::string recipient = std::string(alias) + "@kalvo.example";
    for (const std::string_view folder : kMailboxFolders) {
      WriteFolder(tree, folder, random, recipient, folder == "Inbox" ? messages : random.Below(messages / 2 + 1));
    }
    for (std::size_t i = 0; i < ownFolders; ++i) {
      const std::string_view folder = ownFolders == std::size(kOwnFolders) ? kOwnFolders[i] : random.Pick(kOwnFolders);
      WriteFolder(tree, folder, random, recipient, messages == 0 ? 0 : random.Below(4));
    }
  }

  void WritePublicFolder(const PublicFolder& folder) {
    const Server& server = organization_.servers[folder.server];
    Random random = organization_.RandomFor(server.computerName + folder.path);
    const std::int64_t messages = std::min<std::int64_t>(folder.messages, 1 + random.Below(kMostPublicMessages));
    WriteFolder(store_ / PublicLocation(server), folder.path, random, "public@kalvo.example", messages);
  }

  void WriteFolder(const fs::path& tree, std::string_view path, Random& random, std::string_view recipient,
                   std::int64_t messages) {
    const std::string name = FolderName(path);
    const fs::path folder = name.empty() ? tree : tree / name;
    if (!written_.insert(folder.string()).second) return;
    for (const char* part : {"cur", "new", "tmp"}) fs::create_directories(folder / part);
    Moment last = organization_.now.Before(400);
    if (!name.empty()) {
      WriteFile(folder / "maildirfolder", "");
      SetTime(folder / "maildirfolder", last.Before(random.Below(400), random.Below(86'400)));
    }
    for (std::int64_t i = 0; i < messages; ++i) {
      const Moment received = organization_.now.Before(random.Below(390), random.Below(86'400));
      const std::string text = MailText(random, recipient, received);
      WriteMessage(folder, ++messagesOf_[tree.string()], random.OneIn(6), received, text);
      last = std::max(last, received);
    }
    SetTime(folder / "cur", last);
    SetTime(folder / "new", last);
  }

  void WriteMessage(const fs::path& folder, std::int64_t number, bool isNew, Moment received, std::string_view text) {
    const std::string name = Built([&](std::string& out) {
      Append(out, received.seconds, ".M", number, ".store,S=", text.size(), isNew ? "" : ":2,S");
    });
    const fs::path file = folder / (isNew ? "new" : "cur") / name;
    WriteFile(file, text);
    SetTime(file, received);
  }

  void WriteKey() {
    const mail::IdentifierKey key = MailKey(organization_);
    fs::create_directory(store_ / ".kalvo");
    fs::permissions(store_ / ".kalvo", fs::perms::owner_all);
    const fs::path file = store_ / ".kalvo" / "key";
    WriteFile(file, "");
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);  // before the key is in it
    WriteFile(file, std::string(key.begin(), key.end()));
  }

  const Organization& organization_;
  const SampleMail mail_;
  fs::path store_;
  std::string text_;
  std::map<std::string, std::int64_t> messagesOf_;  // a tree, numbered for itself, whatever others are made
  std::set<std::string> written_;
};

bool IsSample(const fs::path& store) {
  std::ifstream in(store / "mailboxes.txt", std::ios::binary);
  std::string start(kMark.size(), '\0');
  return in.read(start.data(), static_cast<std::streamsize>(start.size())) && start == kMark;
}

}  // namespace

void MakeSampleMail(const SampleOptions& options, Progress& progress) {
  if (options.mail == SampleMail::None) return;
  Organization organization = MakeOrganization(options.size, options.seed, progress);
  organization.key = options.key;
  MakeSampleMail(organization, options.out, options.mail, progress);
}

void MakeSampleMail(const Organization& organization, const fs::path& out, SampleMail mail, Progress& progress) {
  if (mail == SampleMail::None) return;
  const fs::path store = out / "mail", fresh = out / "mail.new";
  if (fs::exists(store) && !IsSample(store)) Fail("There is a mail store that is not a sample in", store);
  std::error_code failed;
  fs::remove_all(fresh, failed);
  fs::create_directories(fresh, failed);
  if (failed) Fail("cannot make the folder", fresh);
  try {
    MailWriter(organization, mail, fresh).Write(progress);
    fs::remove_all(store);
    fs::rename(fresh, store);
  } catch (const fs::filesystem_error& error) {
    Fail(error.code().message(), error.path1());
  }
}

const Server& HomeOfSampleUsers(const Organization& organization) {
  return *std::find_if(organization.servers.begin(), organization.servers.end(),
                       [](const Server& server) { return server.scanned && server.mailboxCount > 0; });
}

}  // namespace kalvo::sample
