#include "adapters/imap/imap_store.h"

#include <gmime/gmime.h>
#include <gnutls/crypto.h>
#include <gnutls/gnutls.h>

#include <algorithm>
#include <filesystem>
#include <map>

#include "adapters/imap/imap_error.h"
#include "adapters/imap/listed_folder.h"
#include "adapters/imap/removal.h"
#include "adapters/mail/directory_file.h"
#include "adapters/mail/errors.h"
#include "adapters/mail/named_folder.h"
#include "adapters/mail/shown_text.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::imap {

namespace {

constexpr unsigned kKeyRounds = 50'000;

// Every process of the site knows the administrator's password, and nobody else does. The many rounds keep an
// identifier from being a way to try out passwords.
mail::IdentifierKey MakeKey(const Settings& settings) {
  std::string salt;
  Append(salt, "kalvo mail identifiers ", settings.server.host, ":", settings.server.port, " ", settings.administrator);
  gnutls_datum_t password{reinterpret_cast<unsigned char*>(const_cast<char*>(settings.password.data())),
                          static_cast<unsigned>(settings.password.size())};
  gnutls_datum_t salted{reinterpret_cast<unsigned char*>(salt.data()), static_cast<unsigned>(salt.size())};
  mail::IdentifierKey key{};
  const int code = gnutls_pbkdf2(GNUTLS_MAC_SHA256, &password, &salted, kKeyRounds, key.data(), key.size());
  if (code < 0) throw mail::StoreFailed(std::string("No identifier key can be made: ") + gnutls_strerror(code));
  return key;
}

// The last name of a folder, as people write it.
std::string LeafName(std::string_view folder, char separator) {
  if (EqualsIgnoringAsciiCase(folder, "INBOX")) return "Inbox";
  const auto end = separator == 0 ? std::string::npos : folder.rfind(separator);
  return mail::FromModifiedUtf7(end == std::string::npos ? folder : folder.substr(end + 1));
}

// "INBOX." is the inbox's name and the separator, in any case.
bool IsPrefix(std::string_view prefix, std::string_view folder, char separator) {
  return prefix.size() == folder.size() + 1 && prefix.back() == separator &&
         EqualsIgnoringAsciiCase(prefix.substr(0, folder.size()), folder);
}

bool CanBeSent(std::string_view name) {
  return std::none_of(name.begin(), name.end(),
                      [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
}

Error NoFolder(std::string_view name) {
  return mail::NoSuchFolder(
      Built([&](std::string& out) { Append(out, "There is no folder \"", mail::CleanText(name), "\"."); }));
}

std::shared_ptr<KnownFolder> NothingKnown() {
  auto nothing = std::make_shared<KnownFolder>();
  nothing->messages = std::make_shared<const std::vector<Summary>>();
  return nothing;
}

std::string PlaceText(const Place& place) {
  return Built([&](std::string& out) { Append(out, place.server, '\n', place.user, '\n', place.folder); });
}

}  // namespace

ImapStore::ImapStore(Settings settings)
    : pool_(std::make_shared<ConnectionPool>(std::move(settings))), key_(MakeKey(pool_->Config())) {
  g_mime_init();
}

std::shared_ptr<const mail::Directory> ImapStore::Mailboxes() {
  const auto& file = pool_->Config().directoryFile;
  std::error_code error;
  const auto written = std::filesystem::last_write_time(file, error);
  if (!directory_ || error || written != directoryWritten_) {
    directory_ = std::make_shared<const mail::Directory>(mail::ReadDirectoryFile(file));
    directoryWritten_ = written;
  }
  return directory_;
}

std::string ImapStore::UserOf(const mail::Tree& tree) const {
  return pool_->Config().LoginOf(tree.IsPublic() ? "" : tree.mailbox->location);
}

ImapStore::Root ImapStore::RootOf(const mail::Tree& tree, Connection& connection) {
  if (tree.IsPublic()) {
    std::string prefix = Mailboxes()->Server(tree.server).publicFolders;
    if (prefix.empty()) throw mail::NoSuchFolder("The server has no public folders.");
    return {std::move(prefix), {}};
  }
  return {connection.PersonalPrefix(), connection.ForeignPrefixes()};
}

std::vector<Folder> ImapStore::Below(const mail::Tree& tree, Connection& connection, std::string_view folder,
                                     States states) {
  const Root root = RootOf(tree, connection);
  const char separator = connection.Separator();
  std::string prefix(folder);
  if (folder.empty()) {
    prefix = root.prefix;
  } else if (separator == 0 || IsPrefix(root.prefix, folder, separator)) {
    // Where all folders of a mailbox stand below its inbox, they are the root's and not the inbox's.
    return {};
  } else {
    prefix += separator;
  }
  const auto list = [&](const std::string& pattern, const std::string& start) {
    return states == States::Yes ? connection.ListStates(pattern, start) : connection.List(pattern, start);
  };
  auto listed = list(prefix + "%", prefix);
  if (folder.empty() && !tree.IsPublic() && !prefix.empty()) {
    for (auto& inbox : list("INBOX", "")) listed.push_back(std::move(inbox));
  }
  const std::string user = UserOf(tree);
  const auto belongs = [&](const Folder& found) {
    const bool isInbox = EqualsIgnoringAsciiCase(found.name, "INBOX");
    std::string_view leaf = found.name;
    if (!isInbox || leaf.starts_with(prefix)) leaf.remove_prefix(prefix.size());
    if (holding_.IsIt(connection, user, found.name)) return false;
    if (leaf.empty() || !CanBeSent(leaf) || (separator != 0 && leaf.find(separator) != std::string::npos)) return false;
    return std::none_of(root.excluded.begin(), root.excluded.end(), [&](const std::string& other) {
      if (other.empty()) return false;
      const std::string_view bare(other.data(), other.size() - (other.back() == separator ? 1 : 0));
      return found.name == bare || std::string_view(found.name).starts_with(other);
    });
  };
  std::erase_if(listed, [&](const Folder& found) { return !belongs(found); });
  return listed;
}

std::string ImapStore::FindFolder(const mail::Tree& tree, const mail::FolderPath& path) {
  return pool_->With(tree.server, UserOf(tree), [&](Connection& connection) {
    const auto found = mail::FolderAt(path, [&](const std::string& folder) {
      std::vector<mail::NamedFolder> named;
      for (Folder& each : Below(tree, connection, folder, States::No)) {
        std::string name = mail::FolderName(LeafName(each.name, connection.Separator()));
        named.push_back({std::move(each.name), std::move(name)});
      }
      return named;
    });
    if (!found) throw NoFolder(mail::PathText(path));
    return *found;
  });
}

mail::FolderPath ImapStore::PathOf(const mail::Tree& tree, std::string_view folder) {
  return pool_->With(tree.server, UserOf(tree), [&](Connection& connection) {
    const Root root = RootOf(tree, connection);
    const char separator = connection.Separator();
    const auto listed = connection.List(folder, "");
    const bool there =
        std::any_of(listed.begin(), listed.end(), [&](const Folder& found) { return found.name == folder; });
    std::string_view rest = folder;
    if (!there) throw NoFolder(LeafName(folder, separator));
    if (rest.starts_with(root.prefix)) rest.remove_prefix(root.prefix.size());
    mail::FolderPath path;
    while (!rest.empty()) {
      const auto end = separator == 0 ? rest.size() : std::min(rest.find(separator), rest.size());
      // Only the first name can be the inbox.
      const auto name = rest.substr(0, end);
      path.push_back(path.empty() ? LeafName(name, separator) : mail::FromModifiedUtf7(name));
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    for (auto& name : path) name = mail::FolderName(name);
    return path;
  });
}

std::vector<mail::FolderInfo> ImapStore::Folders(const mail::Tree& tree, std::string_view folder) {
  const std::string user = UserOf(tree);
  const Deadline deadline(pool_->Config().limits.operation);
  const auto connections = pool_->Cost().connections;
  char separator = 0;
  const auto listed = pool_->With(tree.server, user, deadline, [&](Connection& connection) {
    separator = connection.Separator();
    return Below(tree, connection, folder, connection.ListsStates() ? States::Yes : States::No);
  });
  std::vector<mail::FolderInfo> folders;
  for (const Folder& found : listed) {
    auto info = InfoOf({tree.server, user, found.name}, found, deadline);
    info.key = found.name;
    info.name = mail::FolderName(LeafName(found.name, separator));
    folders.push_back(std::move(info));
  }
  // What a session that was open for long refuses a new one may show.
  const bool someAreClosed = std::any_of(folders.begin(), folders.end(), [](const auto& each) { return !each.size; });
  if (someAreClosed && pool_->Cost().connections == connections) pool_->GiveUp(tree.server, user);
  std::stable_sort(folders.begin(), folders.end(), [](const mail::FolderInfo& a, const mail::FolderInfo& b) {
    return ToLower(a.name) < ToLower(b.name);
  });
  return folders;
}

// Runs a step that brings what is known of a folder up to date, again and again where a damaged message is in the way.
template <typename Step>
auto ImapStore::Learn(const Place& place, const Deadline& deadline, Step&& step) {
  for (;;) {
    try {
      return pool_->With(place.server, place.user, deadline, step);
    } catch (const ImapError& error) {
      if (!error.MayBeTheMessage() || deadline.Passed() || !cache_.Narrow(PlaceText(place))) throw;
    }
  }
}

mail::FolderInfo ImapStore::Describe(const Place& place, const Deadline& deadline) {
  const auto known = Learn(place, deadline, [&](Connection& connection) -> std::shared_ptr<KnownFolder> {
    try {
      auto state = connection.Status(place.folder);
      if (auto current = cache_.Find(PlaceText(place), state)) return current;
      if (state.messages == 0) return NothingKnown();
      state = connection.Open(place.folder, Access::Read);
      return cache_.Update(PlaceText(place), state, connection);
    } catch (const ImapError& error) {
      // A folder that may be seen but not opened is shown without its contents.
      if (error.What() != Fault::Refused) throw;
      return nullptr;
    }
  });
  mail::FolderInfo info;
  if (known) return InfoOf(*known);
  info.size.reset();
  info.messageCount.reset();
  return info;
}

// What the server told with the folder's name, and where that is nothing, what is behind it.
mail::FolderInfo ImapStore::InfoOf(const Place& place, const Folder& folder, const Deadline& deadline) {
  mail::FolderInfo info;
  if (!folder.selectable) return info;
  if (!folder.state || !folder.size) return Describe(place, deadline);
  const auto known = cache_.Find(PlaceText(place), *folder.state);
  if (known) return InfoOf(*known);
  info.size = *folder.size;
  info.messageCount = static_cast<std::int32_t>(folder.state->messages);
  info.knowsDates = folder.state->messages == 0;
  return info;
}

// A folder's dates are those of its first and last arrival: servers tell no others.
mail::FolderInfo ImapStore::InfoOf(const KnownFolder& known) {
  mail::FolderInfo info;
  info.size = known.TotalSize();
  info.messageCount = static_cast<std::int32_t>(known.messages->size());
  if (!known.messages->empty()) info.dates = {known.messages->back().received, known.messages->front().received};
  return info;
}

mail::FolderDates ImapStore::DatesOf(const mail::Tree& tree, std::string_view folder) {
  return Describe({tree.server, UserOf(tree), std::string(folder)}, Deadline(pool_->Config().limits.operation)).dates;
}

std::unique_ptr<mail::MessageSource> ImapStore::Messages(const mail::Tree& tree, std::string_view folder) {
  Place place{tree.server, UserOf(tree), std::string(folder)};
  auto known = Learn(place, Deadline(pool_->Config().limits.operation), [&](Connection& connection) {
    const auto state = place.folder.empty() ? std::nullopt : OpenListed(connection, place.folder, Access::Read);
    if (!state) return NothingKnown();
    return cache_.Update(PlaceText(place), *state, connection);
  });
  return std::make_unique<ImapMessages>(pool_, std::move(place), std::move(known));
}

mail::MessageDetails ImapStore::Message(const mail::Tree& tree, std::string_view folder, std::string_view message) {
  const auto number = ReadMessageKey(message);
  if (!number) throw mail::NoSuchMessage();
  try {
    return Details(tree, folder, *number, Connection::Parts::Yes);
  } catch (const ImapError& error) {
    if (!error.MayBeTheMessage()) throw;
  }
  return Details(tree, folder, *number, Connection::Parts::No);
}

mail::MessageDetails ImapStore::Details(const mail::Tree& tree, std::string_view folder, const MessageNumber& number,
                                        Connection::Parts parts) {
  return pool_->With(tree.server, UserOf(tree), [&](Connection& connection) -> mail::MessageDetails {
    const auto state = OpenListed(connection, std::string(folder), Access::Read);
    if (!state || state->uidValidity != number.uidValidity) throw mail::NoSuchMessage();
    for (auto& found : connection.Fetch(std::span(&number.uid, 1), parts)) {
      if (found.uid != number.uid) continue;
      return {std::move(found.subject), std::move(found.sender),     found.size, found.sent,
              found.received,           std::move(found.attachments)};
    }
    throw mail::NoSuchMessage();
  });
}

// First the message is held, then it is removed, then it is held for good. A failure after which the message is
// surely where it was leaves nothing held; any other is left to the holding folder, which looks where it is.
std::string ImapStore::Remove(const mail::Tree& tree, std::string_view folder, std::string_view message,
                              const mail::Deletion& deletion) {
  const auto number = ReadMessageKey(message);
  if (!number) throw mail::NoSuchMessage();
  mail::MessageDetails details = Message(tree, folder, message);
  mail::HeldMessage held =
      mail::ToHold(tree, {PathOf(tree, folder), std::string(folder)}, std::move(details), deletion);
  held.name = message;
  Removal removal(std::string(folder), *number);
  const std::string user = UserOf(tree);
  const WholeMessage whole =
      pool_->WithOwn(tree.server, user, [&](Connection& connection) { return removal.Read(connection); });
  held.flags = whole.flags;
  holding_.Put(held, whole);
  try {
    pool_->WithOwn(tree.server, user, [&](Connection& connection) { removal.Run(connection); });
  } catch (const ImapError&) {
    throw;
  } catch (const Error&) {
    holding_.Drop(held);
    throw;
  }
  try {
    holding_.Finish(held);
  } catch (const ImapError&) {
    // The original is gone, so the copy is the message with or without its mark.
  }
  return held.id;
}

// One of the directory's servers for each address: several may be one and the same.
std::vector<std::string> ImapStore::Servers() {
  std::map<const ServerAddress*, std::string> servers;
  for (const mail::MailServer& server : Mailboxes()->Servers()) {
    servers.emplace(&pool_->Config().AddressOf(server.name), server.name);
  }
  std::vector<std::string> names;
  for (const auto& [address, name] : servers) names.push_back(name);
  return names;
}

std::vector<mail::HeldMessage> ImapStore::Held(const mail::Tree* tree) {
  std::vector<mail::HeldMessage> all;
  for (const std::string& server : tree ? std::vector<std::string>{tree->server} : Servers()) {
    for (mail::HeldMessage& held : holding_.Held(server)) {
      if (!tree || mail::CameFrom(held, *tree)) all.push_back(std::move(held));
    }
  }
  mail::LastDeletedFirst(all);
  return all;
}

mail::FolderPath ImapStore::Restore(const mail::Tree& tree, std::string_view id,
                                    const std::optional<mail::FolderPath>& into) {
  const auto all = Held(&tree);
  const auto held = std::find_if(all.begin(), all.end(), [&](const mail::HeldMessage& each) { return each.id == id; });
  if (held == all.end()) throw mail::NotHeld();
  const std::string folder = into ? FindFolder(tree, *into) : held->folderKey;
  mail::FolderPath path;
  try {
    path = PathOf(tree, folder);
  } catch (const Error& error) {
    if (error.Number() != codes::kNoSuchFolder || into) throw;
    throw mail::FolderOfHeldIsGone(held->folder);
  }
  if (!holding_.Restore(*held, folder)) throw mail::NotHeld();
  return path;
}

std::int32_t ImapStore::Sweep(std::int64_t before) {
  std::int32_t swept = 0;
  std::optional<ImapError> failure;  // of one server, which keeps the others waiting no longer than that
  for (const std::string& server : Servers()) {
    try {
      swept += holding_.Sweep(server, before);
    } catch (const ImapError& error) {
      failure = error;
    }
  }
  if (failure) throw *failure;
  return swept;
}

}  // namespace kalvo::imap
