#include "adapters/maildir/maildir_fixture.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "adapters/live_mailbox/fixture.h"
#include "adapters/mail/shown_text.h"
#include "support/temporary_folder.h"

namespace kalvo::test {

namespace fs = std::filesystem;

void MakeMaildir(const fs::path& folder) {
  for (const char* part : {"cur", "new", "tmp"}) fs::create_directories(folder / part);
}

fs::path MaildirFolder(const fs::path& tree, const std::vector<std::string>& path) {
  if (path == std::vector<std::string>{"Inbox"}) return tree;
  std::string name;
  for (const std::string& step : path) {
    name += "." + (name.empty() && step == "Inbox" ? std::string("INBOX") : mail::ToModifiedUtf7(step));
  }
  return tree / name;
}

void Deliver(const fs::path& folder, const std::string& name, std::string_view text, std::int64_t received) {
  const fs::path file = folder / "tmp" / name;
  WriteFile(file, text);
  const timespec times[2] = {{received, 0}, {received, 0}};
  utimensat(AT_FDCWD, file.c_str(), times, 0);
  fs::rename(file, folder / (name.find(':') == std::string::npos ? "new" : "cur") / name);
}

void LoadFixture(const fs::path& store) {
  fs::create_directories(store);
  WriteFile(store / "mailboxes.txt", FixtureDirectory("public/EX01"));
  int number = 0;
  for (const FixtureTree& tree : FixtureTrees()) {
    const fs::path top = store / (tree.isPublic ? "public/" + tree.location : tree.location);
    MakeMaildir(top);
    for (const auto& folder : tree.folders) MakeMaildir(MaildirFolder(top, folder));
    for (const FixtureMessage& message : tree.messages) {
      const std::string name = "m" + std::to_string(number) + ".host" + (number % 2 ? "" : ":2,S");
      Deliver(MaildirFolder(top, message.folder), name, message.text, message.received);
      ++number;
    }
  }
}

}  // namespace kalvo::test
