#include "golden/live/sample_mail_server.h"

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <regex>
#include <stdexcept>

#include "database/sample_mail/sample_mail.h"
#include "support/process.h"

namespace kalvo::test {
namespace {

namespace fs = std::filesystem;

constexpr char kEveryRight[] = "anyone lrs\nuser=kalvo lrwstipekxa\n";

// Copies a tree with the times of its files, which are the messages' arrivals, for the server's user.
void CopyMail(const fs::path& from, const fs::path& to) {
  fs::create_directories(to);
  fs::copy(from, to, fs::copy_options::recursive | fs::copy_options::overwrite_existing);
  const passwd* user = getpwnam("nobody");
  const group* users = getgrnam("nogroup");
  if (!user || !users) throw std::runtime_error("no user nobody");
  const auto giveAway = [&](const fs::path& path) {
    if (chown(path.c_str(), user->pw_uid, users->gr_gid) != 0) throw std::runtime_error("not run as root");
  };
  giveAway(to.parent_path());
  giveAway(to);
  for (const auto& entry : fs::recursive_directory_iterator(to)) {
    giveAway(entry.path());
    if (entry.is_regular_file()) {
      fs::last_write_time(entry.path(), fs::last_write_time(from / entry.path().lexically_relative(to)));
    }
  }
}

void MakeSample(const fs::path& folder) {
  setenv("TZ", "UTC", 1);
  sample::SilentProgress quiet;
  sample::MakeSampleMail({folder, sample::SampleSize::Small, 1, sample::SampleMail::Users}, quiet);
}

}  // namespace

SampleMailServer::SampleMailServer() : server_({"alice"}) {
  MakeSample(sample_.Path());
  TakeMailbox();
  TakePublicFolders();
  WriteDirectory();
  server_.Write("password", "pw\n");
}

void SampleMailServer::TakeMailbox() const {
  CopyMail(SampleMailbox(), fs::path(server_.Folder()) / "users/alice/Maildir");
}

void SampleMailServer::TakePublicFolders() const {
  const fs::path to = fs::path(server_.Folder()) / "public";
  for (const auto& entry : fs::directory_iterator(sample_.Path() / "mail/SEA-EX01/public")) {
    const std::string name = entry.path().filename().string();
    if (!entry.is_directory() || !name.starts_with('.')) continue;
    CopyMail(entry.path(), to / name);
    WriteFile(to / name / "dovecot-acl", kEveryRight);
  }
}

// The sample's own, where each mailbox's place is its login name.
void SampleMailServer::WriteDirectory() const {
  std::string text = ReadFile(sample_.Path() / "mail/mailboxes.txt");
  text = std::regex_replace(text, std::regex("location = [^/\n]*/"), "location = ");
  text = std::regex_replace(text, std::regex("public = [^\n]*"), "public = Public/");
  server_.Write("directory", text);
}

std::string SampleMailServer::Address(std::string_view more, std::uint16_t port) const {
  return "imap://master@127.0.0.1:" + std::to_string(port ? port : server_.Port()) +
         "/?tls=none&public-login=kalvo*{admin}&directory=" + server_.Folder() +
         "/directory&password-file=" + server_.Folder() + "/password" + std::string(more);
}

std::string RunProgram(const ProgramPage& page) {
  const TemporaryFolder folder;
  const fs::path output = folder.Path() / "output";
  Command command{{KALVO_PROGRAM, "page", "--root", page.root.string(), "--mail", page.mail, "--query", page.query,
                   "--logon", page.logon, "--url", "/KalvoforExchange/" + page.page},
                  output,
                  "",
                  ""};
  if (!page.right.empty()) {
    command.arguments.insert(command.arguments.end(), {"--session", page.right + "=Yes"});
  }
  command.arguments.push_back((page.root / page.page).string());
  Run(command);
  return ReadFile(output);
}

std::string WithoutIdentifiers(const std::string& html) {
  static const std::regex kInAddress("((?:MessageId|ContainerId|FolderId)=)[^&\"#]+"),
      kInForm("(name=\"(?:MessageId|FolderId)\" value=\")[^\"]+");
  return std::regex_replace(std::regex_replace(html, kInAddress, "$1..."), kInForm, "$1...");
}

}  // namespace kalvo::test
