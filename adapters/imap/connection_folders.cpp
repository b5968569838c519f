#include <algorithm>

#include "adapters/imap/imap_connection.h"
#include "adapters/imap/imap_error.h"
#include "adapters/imap/imap_session.h"
#include "adapters/imap/imap_settings.h"
#include "adapters/imap/transport.h"

namespace kalvo::imap {

namespace {

bool IsNoSelect(const mailimap_mailbox_list& entry) {
  const auto* flags = entry.mb_flag;
  if (!flags) return false;
  if (flags->mbf_sflag == MAILIMAP_MBX_LIST_SFLAG_NOSELECT) return true;
  if (!flags->mbf_oflags) return false;
  for (auto* each = clist_begin(flags->mbf_oflags); each; each = clist_next(each)) {
    const auto* flag = static_cast<mailimap_mbx_list_oflag*>(clist_content(each));
    if (flag->of_flag_ext && std::string_view(flag->of_flag_ext) == "NonExistent") return true;
  }
  return false;
}

void AddPrefixes(const mailimap_namespace_item* item, std::vector<std::string>& prefixes) {
  if (!item || !item->ns_data_list) return;
  for (auto* each = clist_begin(item->ns_data_list); each; each = clist_next(each)) {
    prefixes.emplace_back(static_cast<mailimap_namespace_info*>(clist_content(each))->ns_prefix);
  }
}

}  // namespace

std::vector<Folder> Connection::List(std::string_view pattern, std::string_view prefix) {
  CheckSendable("The folder name", pattern);
  OwnedList found(mailimap_list_result_free);
  Command();
  const Transport::Patience patience(*transport_);
  Check(mailimap_list(session_->imap, "", std::string(pattern).c_str(), &found.list), "LIST");
  std::vector<Folder> folders;
  found.ForEach<mailimap_mailbox_list>([&](const mailimap_mailbox_list& entry) {
    if (entry.mb_delimiter != 0) separator_ = entry.mb_delimiter;
    const std::string_view name = entry.mb_name;
    if (name.starts_with(prefix)) folders.push_back({std::string(name), !IsNoSelect(entry), {}, {}});
  });
  return folders;
}

char Connection::Separator() {
  ReadNamespaces();
  return separator_;
}

const std::string& Connection::PersonalPrefix() {
  ReadNamespaces();
  return personal_;
}

const std::vector<std::string>& Connection::ForeignPrefixes() {
  ReadNamespaces();
  return foreign_;
}

void Connection::ReadNamespaces() {
  if (knowsNamespaces_) return;
  // An empty pattern asks for the separator alone.
  List("", "");
  if (Has("NAMESPACE")) {
    mailimap_namespace_data* data = nullptr;
    Command();
    Check(mailimap_namespace(session_->imap, &data), "NAMESPACE");
    const Owned<mailimap_namespace_data> owned(data);
    std::vector<std::string> personal;
    AddPrefixes(data->ns_personal, personal);
    AddPrefixes(data->ns_other, foreign_);
    AddPrefixes(data->ns_shared, foreign_);
    if (!personal.empty()) personal_ = personal.front();
  }
  knowsNamespaces_ = true;
}

FolderState Connection::Status(const std::string& folder) {
  CheckSendable("The folder name", folder);
  const Owned<mailimap_status_att_list> wanted(mailimap_status_att_list_new_empty());
  for (const int item : {MAILIMAP_STATUS_ATT_UIDVALIDITY, MAILIMAP_STATUS_ATT_UIDNEXT, MAILIMAP_STATUS_ATT_MESSAGES}) {
    mailimap_status_att_list_add(wanted.get(), item);
  }
  mailimap_mailbox_data_status* answer = nullptr;
  Command();
  Check(mailimap_status(session_->imap, folder.c_str(), wanted.get(), &answer), "STATUS");
  const Owned<mailimap_mailbox_data_status> owned(answer);
  FolderState state;
  if (!answer || !answer->st_info_list) return state;
  for (auto* each = clist_begin(answer->st_info_list); each; each = clist_next(each)) {
    const auto* info = static_cast<mailimap_status_info*>(clist_content(each));
    if (info->st_att == MAILIMAP_STATUS_ATT_UIDVALIDITY) state.uidValidity = info->st_value;
    if (info->st_att == MAILIMAP_STATUS_ATT_UIDNEXT) state.uidNext = info->st_value;
    if (info->st_att == MAILIMAP_STATUS_ATT_MESSAGES) state.messages = info->st_value;
  }
  return state;
}

FolderState Connection::Open(const std::string& folder, Access access) {
  CheckSendable("The folder name", folder);
  openFolder_.clear();
  const bool writing = access == Access::Write;
  Command();
  Check(writing ? mailimap_select(session_->imap, folder.c_str()) : mailimap_examine(session_->imap, folder.c_str()),
        writing ? "SELECT" : "EXAMINE");
  const auto* info = session_->imap->imap_selection_info;
  if (!info) Fail(MAILIMAP_ERROR_PROTOCOL, "EXAMINE");
  openFolder_ = folder;
  openState_ = {info->sel_uidvalidity, info->sel_uidnext, info->sel_exists};
  return openState_;
}

FolderState Connection::Stay(const std::string& folder) {
  return !folder.empty() && openFolder_ == folder ? openState_ : Open(folder, Access::Read);
}

std::optional<std::string> Connection::Rights(const std::string& folder) {
  if (!Has("ACL")) return std::nullopt;
  CheckSendable("The folder name", folder);
  mailimap_acl_myrights_data* data = nullptr;
  Command();
  Check(mailimap_acl_myrights(session_->imap, folder.c_str(), &data), "MYRIGHTS");
  const Owned<mailimap_acl_myrights_data> owned(data);
  return std::string(data->rights);
}

}  // namespace kalvo::imap
