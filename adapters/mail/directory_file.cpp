#include "adapters/mail/directory_file.h"

#include <algorithm>
#include <optional>

#include "adapters/mail/errors.h"
#include "base/file.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/text_tools.h"

namespace kalvo::mail {

namespace {

// Reads line by line and keeps where it is, for failures.
class DirectoryReader {
 public:
  DirectoryReader(std::string_view file, std::string_view text) : file_(file), text_(text) {}

  Directory Read() {
    while (!text_.empty()) {
      const std::size_t end = text_.find('\n');
      ++line_;
      ReadLine(Trimmed(text_.substr(0, end)));
      text_.remove_prefix(end == std::string::npos ? text_.size() : end + 1);
    }
    EndMailbox();
    return Directory(std::move(servers_), std::move(mailboxes_));
  }

 private:
  [[noreturn]] void Refuse(std::string_view why, std::size_t line) const {
    throw StoreFailed(Built([&](std::string& out) { Append(out, file_, ":", line, ": ", why); }));
  }
  [[noreturn]] void Refuse(std::string_view why) const { Refuse(why, line_); }

  void ReadLine(std::string_view line) {
    if (line.empty() || line.starts_with('#')) return;
    const auto bad = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
    if (std::any_of(line.begin(), line.end(), bad)) Refuse("a control character in the line");
    if (line.starts_with('[')) return ReadHeading(line);
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) Refuse("expected \"[server NAME]\", \"[mailbox NAME]\" or \"key = value\"");
    ReadSetting(Trimmed(line.substr(0, equals)), Trimmed(line.substr(equals + 1)));
  }

  void ReadHeading(std::string_view line) {
    EndMailbox();
    if (!line.ends_with(']')) Refuse("a heading ends with \"]\"");
    const std::string_view heading = Trimmed(line.substr(1, line.size() - 2));
    const std::size_t blank = std::min(heading.find_first_of(kBlanks), heading.size());
    const std::string_view kind = heading.substr(0, blank), name = Trimmed(heading.substr(blank));
    if (name.empty()) Refuse("a heading is \"[server NAME]\" or \"[mailbox NAME]\"");
    if (kind == "server") {
      if (FindServer(name)) Refuse("this server was named before");
      servers_.push_back({std::string(name), ""});
    } else if (kind == "mailbox") {
      mailbox_.emplace();
      mailbox_->name = name;
      mailboxLine_ = line_;
    } else {
      Refuse("a heading is \"[server NAME]\" or \"[mailbox NAME]\"");
    }
  }

  void ReadSetting(std::string_view key, std::string_view value) {
    if (value.empty()) Refuse("the value is missing");
    if (mailbox_) return ReadMailboxSetting(key, value);
    if (servers_.empty()) Refuse("a setting stands below a heading");
    if (key != "public") Refuse("a server has only the setting \"public\"");
    Set(servers_.back().publicFolders, value);
  }

  void ReadMailboxSetting(std::string_view key, std::string_view value) {
    if (key == "server") {
      const MailServer* server = FindServer(value);
      if (!server) Refuse("there is no server of this name above");
      Set(mailbox_->server, server->name);
    } else if (key == "account") {
      Set(mailbox_->account, value);
    } else if (key == "address") {
      // Addresses go into attributes that are not encoded.
      if (value.find('@') == std::string::npos || value.find_first_of("\"<>&' ") != std::string::npos) {
        Refuse("an address is name@domain, without blanks, quotes, angle brackets and \"&\"");
      }
      mailbox_->addresses.emplace_back(value);
    } else if (key == "dn") {
      Set(mailbox_->distinguishedName, value);
    } else if (key == "location") {
      Set(mailbox_->location, value);
    } else {
      Refuse("a mailbox has the settings server, account, address, dn and location");
    }
  }

  void Set(std::string& setting, std::string_view value) const {
    if (!setting.empty()) Refuse("this setting was given before");
    setting = value;
  }

  void EndMailbox() {
    if (!mailbox_) return;
    const auto need = [&](bool there, std::string_view what) {
      if (!there) Refuse(what, mailboxLine_);
    };
    need(!mailbox_->server.empty(), "this mailbox has no server");
    need(!mailbox_->account.empty(), "this mailbox has no account");
    need(!mailbox_->addresses.empty(), "this mailbox has no address");
    need(!mailbox_->location.empty(), "this mailbox has no location");
    mailboxes_.push_back(std::move(*mailbox_));
    mailbox_.reset();
  }

  const MailServer* FindServer(std::string_view name) const {
    for (const MailServer& server : servers_) {
      if (EqualsIgnoringCase(server.name, name)) return &server;
    }
    return nullptr;
  }

  std::string_view file_, text_;
  std::size_t line_ = 0, mailboxLine_ = 0;
  std::vector<MailServer> servers_;
  std::vector<Mailbox> mailboxes_;
  std::optional<Mailbox> mailbox_;
};

}  // namespace

Directory ReadDirectory(std::string_view file, std::string_view text) { return DirectoryReader(file, text).Read(); }

Directory ReadDirectoryFile(const std::string& path) {
  const auto text = base::ReadFile(path);
  if (!text) throw StoreFailed(Built([&](std::string& out) { Append(out, "Cannot read ", path, "."); }));
  return ReadDirectory(path, *text);
}

}  // namespace kalvo::mail
