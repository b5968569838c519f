// Where the user is: the mailbox and the folder path above a live listing, each step of it a link.

#include "context/fails.h"
#include "kalvo/context.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/live_mailbox.h"
#include "kalvo/platform/page_host.h"
#include "kalvo/table_generator.h"

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

constexpr std::string_view kFailedPath = "-1";

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

void KalvoforExchangeTableGenerator::Write(Trap& trap, std::string_view text) {
  trap([&] { PageResponse()->Write(text); });
}

// ---- public folders -------------------------------------------------------------------------------------

std::string KalvoforExchangeTableGenerator::PublicFolderDisplayPath() {
  Context& context = PageContext();
  Trap trap;
  std::string id, server;
  trap([&] { id = context.GetRequest()->QueryText("PublicFolderId"); });
  if (id.empty()) return {};
  // Kept: a failure is told from a request without a public folder.
  const std::string failed(kFailedPath);
  std::shared_ptr<LiveContainer> live;
  if (Fails(trap, context, "Get the live container object.", [&] { live = context.LiveDriller(); })) return failed;
  trap([&] { server = context.GetRequest()->QueryText("Server"); });
  if (context.EncapsulateGotoContainerFailure(*live, server, context.KalvoCreatedMailboxName(server), "", 0,
                                              live::kPublicFolders, "Public folder by identifier.")) {
    return failed;
  }
  if (Fails(trap, context, "Open Public folder by identifier.",
            [&] { live->GotoContainerById(server, id, live::kPublicFolders); })) {
    return failed;
  }
  std::string path;
  trap([&] { path = live->CurrentContainerName(); });
  return path;
}

// ---- the path -------------------------------------------------------------------------------------------

bool KalvoforExchangeTableGenerator::DisplayFolderPath(std::string_view szServer, std::string& szMailbox,
                                                       std::string_view szContainer, std::string_view szFolderId,
                                                       KalvoTableConstants tableId) {
  Context& context = PageContext();
  Trap trap;
  std::shared_ptr<LiveContainer> live;
  if (Fails(trap, context, "Get the live container object.", [&] { live = context.LiveDriller(); })) return false;
  if (szMailbox.empty()) return true;
  if (tableId == TABLE_MAPI_FOLDERS && !ResolveMailbox(trap, *live, szServer, szMailbox)) return false;

  const bool isPublic = tableId == TABLE_MAPI_PUBLICFOLDER_FOLDERS;
  Write(trap, "<table border=\"0\"><tr>");
  if (isPublic) {
    const std::string path = PublicFolderDisplayPath();
    if (path == kFailedPath) return false;
    if (!path.empty()) {
      trap([&] { PageResponse()->Write(Built([&](std::string& out) { AppendFolderCell(out, context, path); })); });
    }
  } else {
    WriteMailboxLink(trap, szServer, szMailbox);
  }
  if ((szContainer.empty() || isPublic) && !szFolderId.empty()) {
    if (!WriteFolderById(trap, *live, szServer, szMailbox, szFolderId)) return false;
  } else if (!szContainer.empty()) {
    WriteContainerLinks(trap, szServer, szMailbox, szContainer);
  }
  Write(trap, "</tr></table>");
  return true;
}

void KalvoforExchangeTableGenerator::WriteMailboxLink(Trap& trap, std::string_view szServer,
                                                      std::string_view szMailbox) {
  trap([&] {
    PageResponse()->Write(Built([&](std::string& out) {
      out += "<td>Mailbox:</td>";
      AppendLinkCell(out, PageContext(), szServer, szMailbox, "", szMailbox);
    }));
  });
}

bool KalvoforExchangeTableGenerator::WriteFolderById(Trap& trap, LiveContainer& live, std::string_view szServer,
                                                     std::string_view szMailbox, std::string_view szFolderId) {
  Context& context = PageContext();
  if (context.EncapsulateGotoContainerFailure(live, szServer, szMailbox, "", 0, live::kByPath,
                                              "Mailbox folder by identifier.")) {
    return false;
  }
  if (Fails(trap, context, "Open mailbox folder by identifier.",
            [&] { live.GotoContainerById(szServer, szFolderId, live::kByPath); })) {
    return false;
  }
  trap([&] {
    const std::string path = live.CurrentContainerName();
    PageResponse()->Write(Built([&](std::string& out) { AppendFolderCell(out, context, path); }));
  });
  return true;
}

// A link cell for each piece of the path, leading to the path up to it. Empty pieces are no step.
void KalvoforExchangeTableGenerator::WriteContainerLinks(Trap& trap, std::string_view szServer,
                                                         std::string_view szMailbox, std::string_view szContainer) {
  Write(trap, "<td>Path:</td>");
  std::string path;
  while (!szContainer.empty()) {
    const auto end = szContainer.find('\\');
    const std::string_view piece = szContainer.substr(0, end);
    szContainer.remove_prefix(end == std::string_view::npos ? szContainer.size() : end + 1);
    if (piece.empty()) continue;
    Append(path, path.empty() ? "" : "\\", piece);
    trap([&] {
      PageResponse()->Write(Built([&](std::string& out) {
        out += "<td>\\</td>";
        AppendLinkCell(out, PageContext(), szServer, szMailbox, path, piece);
      }));
    });
  }
}

// ---- the mailbox that a typed name means ----------------------------------------------------------------

bool KalvoforExchangeTableGenerator::ResolveMailbox(Trap& trap, LiveContainer& live, std::string_view szServer,
                                                    std::string& szMailbox) {
  Context& context = PageContext();
  if (!context.DrillDownPermission(szServer, szMailbox)) {
    Write(trap, kNoPermission);
    return false;
  }
  // Every sort and paging link carries the page size: without one this is the first visit.
  std::string pageSize;
  trap([&] { pageSize = context.GetRequest()->QueryText("PageSize"); });
  if (pageSize.empty()) trap([&] { live.ResetNameResolution(); });

  std::shared_ptr<Listing> candidates;
  ClearError();  // the number below is this call's alone
  trap([&] { candidates = live.ResolveNameToAddress(szServer, szMailbox); });
  if (CurrentError().number != 0) return ExplainUnresolved(trap, szServer, szMailbox);
  return TakeMailboxAddress(trap, live, *candidates, szServer, szMailbox);
}

bool KalvoforExchangeTableGenerator::ExplainUnresolved(Trap& trap, std::string_view szServer,
                                                       std::string_view szMailbox) {
  switch (CurrentError().number) {
    case codes::kAmbiguousName: {
      Write(trap, kAmbiguous);
      const std::string pattern = Built([&](std::string& out) { Append(out, szMailbox, '%'); });
      trap([&] { BuildTable(TABLE_AmbiguousAddressResolution, szServer, "", "", pattern); });
      break;
    }
    case codes::kNoSuchMailbox: Write(trap, kNoSuchMailbox); break;
    case codes::kOldAgent: Write(trap, kOldServer); break;
    default: Reports(trap, PageContext(), "ResolveNameToAddress"); break;
  }
  return false;
}

bool KalvoforExchangeTableGenerator::TakeMailboxAddress(Trap& trap, LiveContainer& live, Listing& candidates,
                                                        std::string_view szServer, std::string& szMailbox) {
  std::string home;
  trap([&] { home = live.MailboxHomeServer(szServer, szMailbox); });
  if (ToLower(home) != ToLower(szServer)) {
    Write(trap, kNoSuchMailbox);
    return false;
  }
  return !Fails(trap, PageContext(), "pLiveContainer.Mailbox",
                [&] { szMailbox = ToText(candidates.Field("Address"), platform_.locale); });
}

}  // namespace kalvo
