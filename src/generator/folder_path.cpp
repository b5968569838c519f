#include "generator/folder_path.h"

#include "context/fails.h"
#include "kalvo/context.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/live_mailbox.h"
#include "kalvo/platform/owned.h"
#include "kalvo/platform/page_host.h"

namespace kalvo {

namespace {

constexpr std::string_view kNoPermission =
    "<p><STRONG>You do not have adequate permission to view this mailbox's information. See the Kalvo Exchange "
    "Edition Web Security Help topic for information about mailbox access.</STRONG>";

constexpr std::string_view kAmbiguous =
    "<p>Mailbox name is ambiguous. <br><br> Enter an = sign in front of the mailbox name you want to drill down into "
    "to help resolve the ambiguity.  For example, =Ken will drill down into the Ken mailbox specifically, if your "
    "Exchange Server also has KenH and KenL mailboxes.</p>\r\n"
    "<p>The following mailboxes were found during the last scan of this server.</p>\r\n";

constexpr std::string_view kNoSuchMailbox = "<p>Specified mailbox does not exist";

constexpr std::string_view kOldServer =
    "<p>You have attempted to scan a server with an earlier version of Kalvo Exchange Edition. In order to "
    "successfully scan this agent, you must upgrade it to the current version.";

// `<td><a target="_top" href="MailboxSummary.asp?Server=EX01&Mailbox=alice">alice</a></td>`. The container is
// a parameter only below the mailbox itself.
void AppendLinkCell(std::string& out, const Context& context, std::string_view server, std::string_view mailbox,
                    std::string_view container, std::string_view content) {
  Append(out, "<td><a target=\"_top\" href=\"MailboxSummary.asp?Server=", context.ServerURLEncode(server),
         "&Mailbox=", context.ServerURLEncode(mailbox));
  if (!container.empty()) Append(out, "&Container=", context.ServerURLEncode(container));
  Append(out, "\">", context.ServerHTMLEncode(content), "</a></td>");
}

void AppendFolderCell(std::string& out, const Context& context, std::string_view path) {
  Append(out, "<td>Folder:</td><td>", context.ServerHTMLEncode(path), "</td>");
}

}  // namespace

void FolderPath::Write(std::string_view text) {
  trap_([&] { Held(response_)->Write(text); });
}

template <typename Maker>
void FolderPath::WriteMade(Maker&& maker) {
  trap_([&] {
    const auto response = Held(response_);
    response->Write(Built(maker));
  });
}

// ---- public folders -------------------------------------------------------------------------------------

std::optional<std::string> PublicFolderPath(Context& context) {
  Trap trap;
  std::string id, server;
  trap([&] { id = context.GetRequest()->QueryText("PublicFolderId"); });
  if (id.empty()) return "";
  std::shared_ptr<LiveContainer> live;
  if (Fails(trap, context, "Get the live container object.", [&] { live = context.LiveDriller(); })) return {};
  trap([&] { server = context.GetRequest()->QueryText("Server"); });
  if (context.EncapsulateGotoContainerFailure(*live, server, context.KalvoCreatedMailboxName(server), "", 0,
                                              live::kPublicFolders, "Public folder by identifier.")) {
    return {};
  }
  if (Fails(trap, context, "Open Public folder by identifier.",
            [&] { live->GotoContainerById(server, id, live::kPublicFolders); })) {
    return {};
  }
  std::string path;
  trap([&] { path = live->CurrentContainerName(); });
  return path;
}

// ---- the path -------------------------------------------------------------------------------------------

bool FolderPath::Show(std::string_view server, std::string& mailbox, std::string_view container,
                      std::string_view folderId, KalvoTableConstants table) {
  std::shared_ptr<LiveContainer> live;
  if (Fails(trap_, context_, "Get the live container object.", [&] { live = context_.LiveDriller(); })) return false;
  if (mailbox.empty()) return true;
  if (table == TABLE_MAPI_FOLDERS && !Resolve(*live, server, mailbox)) return false;

  const bool isPublic = table == TABLE_MAPI_PUBLICFOLDER_FOLDERS;
  Write("<table border=\"0\"><tr>");
  if (!isPublic) {
    WriteMailbox(server, mailbox);
  } else if (!WritePublicFolder()) {
    return false;
  }
  if ((container.empty() || isPublic) && !folderId.empty()) {
    if (!WriteFolderById(*live, server, mailbox, folderId)) return false;
  } else if (!container.empty()) {
    WriteContainer(server, mailbox, container);
  }
  Write("</tr></table>");
  return true;
}

bool FolderPath::WritePublicFolder() {
  const auto path = PublicFolderPath(context_);
  if (!path) return false;
  if (!path->empty()) WriteMade([&](std::string& out) { AppendFolderCell(out, context_, *path); });
  return true;
}

void FolderPath::WriteMailbox(std::string_view server, std::string_view mailbox) {
  WriteMade([&](std::string& out) {
    out += "<td>Mailbox:</td>";
    AppendLinkCell(out, context_, server, mailbox, "", mailbox);
  });
}

bool FolderPath::WriteFolderById(LiveContainer& live, std::string_view server, std::string_view mailbox,
                                 std::string_view folderId) {
  if (context_.EncapsulateGotoContainerFailure(live, server, mailbox, "", 0, live::kByPath,
                                               "Mailbox folder by identifier.")) {
    return false;
  }
  if (Fails(trap_, context_, "Open mailbox folder by identifier.",
            [&] { live.GotoContainerById(server, folderId, live::kByPath); })) {
    return false;
  }
  trap_([&] {
    const std::string path = live.CurrentContainerName();
    Held(response_)->Write(Built([&](std::string& out) { AppendFolderCell(out, context_, path); }));
  });
  return true;
}

// A link cell for each piece of the path, leading to the path up to it. Empty pieces are not steps.
void FolderPath::WriteContainer(std::string_view server, std::string_view mailbox, std::string_view container) {
  Write("<td>Path:</td>");
  std::string path;
  while (!container.empty()) {
    const auto end = container.find('\\');
    const std::string_view piece = container.substr(0, end);
    container.remove_prefix(end == std::string::npos ? container.size() : end + 1);
    if (piece.empty()) continue;
    Append(path, path.empty() ? "" : "\\", piece);
    WriteMade([&](std::string& out) {
      out += "<td>\\</td>";
      AppendLinkCell(out, context_, server, mailbox, path, piece);
    });
  }
}

// ---- the mailbox that a typed name means ----------------------------------------------------------------

bool FolderPath::Resolve(LiveContainer& live, std::string_view server, std::string& mailbox) {
  if (!context_.DrillDownPermission(server, mailbox)) {
    Write(kNoPermission);
    return false;
  }
  // Every sort and paging link carries the page size: without one this is the first visit.
  std::string pageSize;
  trap_([&] { pageSize = context_.GetRequest()->QueryText("PageSize"); });
  if (pageSize.empty()) trap_([&] { live.ResetNameResolution(); });

  std::shared_ptr<Listing> candidates;
  ClearError();  // the number below is this call's alone
  trap_([&] { candidates = live.ResolveNameToAddress(server, mailbox); });
  if (CurrentError().number != 0) return Explain(server, mailbox);
  return TakeAddress(live, *candidates, server, mailbox);
}

bool FolderPath::Explain(std::string_view server, std::string_view mailbox) {
  switch (CurrentError().number) {
    case codes::kAmbiguousName:
      Write(kAmbiguous);
      trap_([&] { showCandidates_(server, Built([&](std::string& out) { Append(out, mailbox, '%'); })); });
      break;
    case codes::kNoSuchMailbox: Write(kNoSuchMailbox); break;
    case codes::kOldAgent: Write(kOldServer); break;
    default: Reports(trap_, context_, "ResolveNameToAddress"); break;
  }
  return false;
}

bool FolderPath::TakeAddress(LiveContainer& live, Listing& candidates, std::string_view server, std::string& mailbox) {
  std::string home;
  trap_([&] { home = live.MailboxHomeServer(server, mailbox); });
  if (!EqualsIgnoringCase(home, server)) {
    Write(kNoSuchMailbox);
    return false;
  }
  return !Fails(trap_, context_, "pLiveContainer.Mailbox",
                [&] { mailbox = ToText(candidates.Field("Address"), locale_); });
}

}  // namespace kalvo
