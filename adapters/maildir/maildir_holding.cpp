#include "adapters/maildir/maildir_holding.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <iterator>
#include <optional>
#include <utility>

#include "adapters/mail/errors.h"
#include "adapters/maildir/folder.h"
#include "base/fresh_file.h"
#include "kalvo/platform/append.h"

namespace kalvo::maildir {

namespace {

constexpr const char* kFolder = "held";
constexpr std::string_view kRecord = ".record", kMail = ".mail";
constexpr std::size_t kLongestRecord = std::size_t{64} << 10;
constexpr std::int64_t kAbandonedAfter = 3600;  // seconds

// "new" or "cur" before the name, as the record keeps it.
constexpr std::string_view kInNew = "new/", kInCur = "cur/";

std::string RecordName(std::string_view id) { return std::string(id) + std::string(kRecord); }
std::string MailName(std::string_view id) { return std::string(id) + std::string(kMail); }

[[noreturn]] void RefuseToHold(const char* why) {
  throw mail::StoreFailed(Built([&](std::string& out) {
    Append(out, "The message was not deleted: the mail store's holding folder cannot take it (", why, ").");
  }));
}

bool Exists(const File& folder, const std::string& name) {
  struct stat status {};
  return fstatat(folder.Handle(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(status.st_mode);
}

std::optional<mail::HeldMessage> ReadRecord(const File& folder, std::string_view id) {
  const File file = OpenFile(folder, RecordName(id));
  const auto text = file ? base::ReadAll(file, kLongestRecord) : std::nullopt;
  auto held = text ? mail::ReadHeldRecord(*text) : std::nullopt;
  return held && held->id == id ? held : std::nullopt;
}

}  // namespace

File Holding::OpenTree(const std::string& tree) const {
  return OpenFolder(own_, Built([&](std::string& out) { Append(out, kFolder, "/", tree); }));
}

bool Holding::Take(const std::string& tree, Folder& from, std::string_view unique, mail::HeldMessage held) {
  File into;
  if (own_) {
    const File all = OwnFolder(own_, kFolder);
    into = all ? OwnFolder(all, tree.c_str()) : File();
  }
  if (!into) RefuseToHold(own_ ? std::strerror(errno) : "it cannot be made");
  const auto announce = [&](const std::string& name, bool isNew) {
    held.name = std::string(isNew ? kInNew : kInCur) + name;
    const std::size_t mark = name.find(":2,");
    held.flags = mark == std::string::npos ? "" : name.substr(mark + 3);
    if (!base::ReplaceFile(into, RecordName(held.id), mail::WriteHeldRecord(held), {base::Durable::Yes})) {
      RefuseToHold(std::strerror(errno));
    }
  };
  const Moved moved = from.MoveOut(unique, into, MailName(held.id), announce);
  if (moved == Moved::Yes) return true;
  const int why = errno;
  unlinkat(into.Handle(), RecordName(held.id).c_str(), 0);
  if (moved == Moved::Gone) return false;
  RefuseToHold(why == EXDEV ? "it is on another file system than the mailbox" : std::strerror(why));
}

std::vector<mail::HeldMessage> Holding::Held(const std::string& tree) const {
  std::vector<mail::HeldMessage> messages;
  const File folder = OpenTree(tree);
  if (!folder) return messages;
  for (const Name& name : NamesIn(folder)) {
    if (name.isFolder || !name.text.ends_with(kMail)) continue;
    auto held = ReadRecord(folder, std::string_view(name.text).substr(0, name.text.size() - kMail.size()));
    if (held) messages.push_back(std::move(*held));
  }
  return messages;
}

std::vector<mail::HeldMessage> Holding::All() const {
  std::vector<mail::HeldMessage> messages;
  const File all = OpenFolder(own_, kFolder);
  if (!all) return messages;
  for (const Name& tree : NamesIn(all)) {
    if (!tree.isFolder) continue;
    auto held = Held(tree.text);
    std::move(held.begin(), held.end(), std::back_inserter(messages));
  }
  return messages;
}

std::optional<mail::HeldMessage> Holding::Find(const std::string& tree, std::string_view id) const {
  const File folder = mail::IsHeldId(id) ? OpenTree(tree) : File();
  if (!folder || !Exists(folder, MailName(id))) return std::nullopt;
  return ReadRecord(folder, id);
}

bool Holding::Give(const std::string& tree, const mail::HeldMessage& held, Folder& into) {
  const File folder = OpenTree(tree);
  if (!folder) return false;
  const bool isNew = held.name.starts_with(kInNew);
  const std::string name = held.name.substr(std::min(kInNew.size(), held.name.size()));
  const Moved moved = IsStep(name) ? into.MoveIn(folder, MailName(held.id), name, isNew) : Moved::No;
  if (moved == Moved::No) {
    const int why = IsStep(name) ? errno : EINVAL;
    throw mail::StoreFailed(Built([&](std::string& out) {
      Append(out, "The message was not restored: ",
             why == EEXIST ? "the folder has a message of its name" : std::strerror(why), ".");
    }));
  }
  if (moved == Moved::Gone) return false;
  unlinkat(folder.Handle(), RecordName(held.id).c_str(), 0);
  return true;
}

std::int32_t Holding::Sweep(std::int64_t before) {
  std::int32_t swept = 0;
  const File all = OpenFolder(own_, kFolder);
  if (!all) return swept;
  for (const Name& tree : NamesIn(all)) {
    const File folder = tree.isFolder ? OpenFolder(all, tree.text) : File();
    if (!folder) continue;
    for (const Name& name : NamesIn(folder)) {
      struct stat status {};
      if (name.isFolder || fstatat(folder.Handle(), name.text.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
      const std::string id = name.text.substr(0, name.text.find('.'));
      if (name.text.ends_with(kMail)) {
        // The time that a file came here is the one of its last change of name; a record that is damaged tells none.
        const auto held = ReadRecord(folder, id);
        if ((held ? held->deletion.when : status.st_ctim.tv_sec) >= before) continue;
        if (unlinkat(folder.Handle(), name.text.c_str(), 0) == 0) ++swept;
        unlinkat(folder.Handle(), RecordName(id).c_str(), 0);
      } else if (!Exists(folder, MailName(id)) && status.st_mtim.tv_sec + kAbandonedAfter < std::time(nullptr)) {
        unlinkat(folder.Handle(), name.text.c_str(), 0);
      }
    }
  }
  return swept;
}

}  // namespace kalvo::maildir
