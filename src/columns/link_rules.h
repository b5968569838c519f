#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "columns/row_fields.h"
#include "context/parameters.h"
#include "display/message_store.h"
#include "kalvo/codes.h"
#include "kalvo/enumerations.h"

namespace kalvo::links {

// Where a link parameter's value comes from.
enum class From : std::uint8_t {
  None,
  Value,        // the field that the cell shows
  Field,        // another field of the row
  AlertField,   // a field of the row in an alert, one of a Top-N row elsewhere
  Name,         // the context's name: the server
  Mailbox,      // the context's mailbox
  MailboxPath,  // the context's mailbox, a backslash and the cell's value
  Request,      // the page request's item of the parameter's own name
};

struct LinkSource {
  From from = From::None;
  RowField field = {};
  RowField ranked = {};  // for `AlertField` outside of an alert
};

constexpr LinkSource Value() { return {From::Value}; }
constexpr LinkSource Field(RowField field) { return {From::Field, field}; }
constexpr LinkSource AlertOrRanked(RowField field, RowField ranked) { return {From::AlertField, field, ranked}; }
constexpr LinkSource Name() { return {From::Name}; }
constexpr LinkSource Mailbox() { return {From::Mailbox}; }
constexpr LinkSource MailboxPath() { return {From::MailboxPath}; }
constexpr LinkSource Request() { return {From::Request}; }

struct LinkParameter {
  std::string_view name = {};
  LinkSource source = {};
};

enum class LinkWhen : std::uint8_t {
  Always,
  ServerIsManaged,   // there is a value, and the row's "ServerState" is empty or 2
  AlertIsOfAServer,  // there is a value, and the row's alert is not that of a new server
};

enum class LinkSort : std::uint8_t { AsIs, ByModifiedDate };
enum class MissingServer : std::uint8_t { Plain, Grey };

inline constexpr std::size_t kMostLinkParameters = 5;

struct LinkRule {
  KalvoTableHyperlinkType type;
  std::string_view page;
  LinkParameter parameters[kMostLinkParameters] = {};
  LinkWhen when = LinkWhen::Always;
  LinkSort sort = LinkSort::AsIs;
  MissingServer missing = MissingServer::Plain;
};

// clang-format off
using enum RowField;

inline constexpr LinkRule kLinks[] = {
  {HYPERLINK_NONE,                    ""},
  {HYPERLINK_SERVERGROUP,             "../Resources/SingleServerGroupReports.asp",   {{"GroupName", Value()}}},
  {HYPERLINK_MAILBOXGROUP,            "../Resources/SingleMailboxGroupReports.asp",  {{"GroupName", Value()}}},
  {HYPERLINK_SERVERGROUPCONFIG,       "../Configuration/ConfigureServerGroup.asp",   {{"GroupName", Value()}}},
  {HYPERLINK_MAILBOXGROUPCONFIG,      "../Configuration/ConfigureMailboxGroup.asp",  {{"GroupName", Value()}}},
  {HYPERLINK_SERVER,                  kSingleServerPage,  {{"Server", Value()}}, LinkWhen::Always, LinkSort::AsIs, MissingServer::Grey},
  {HYPERLINK_PUBLICFOLDER,            kPublicFolderPage, {{"Server", AlertOrRanked(Attrib2, RankedServer)}, {"Mailbox", Value()}, {"PublicFolderId", AlertOrRanked(Attrib5, RankedPublicFolder)}}, LinkWhen::Always, LinkSort::ByModifiedDate},
  {HYPERLINK_DISABLEDSINGLEUSER,      "../Tasks/DisabledSingleUser.asp",             {{"Name", Value()}}},
  {HYPERLINK_CAPACITYPLANNINGSERVER,  "../Tasks/CapacityPlanning.asp",               {{"Server", Value()}}},
  {HYPERLINK_SERVER_MANAGED,          kSingleServerPage,  {{"Server", Value()}}, LinkWhen::ServerIsManaged,  LinkSort::AsIs, MissingServer::Grey},
  {HYPERLINK_ALERT_SERVER_MANAGED,    kSingleServerPage,  {{"Server", Value()}}, LinkWhen::AlertIsOfAServer, LinkSort::AsIs, MissingServer::Grey},
  {HYPERLINK_ALERT_MAILBOX,           kMailboxPage,   {{"Server", Field(Attrib2)}, {"Mailbox", Field(AlertedResource)}}},
  {HYPERLINK_CHARGEBACK_MAILBOX,      kMailboxPage,   {{"Server", Field(ComputerName)}, {"Mailbox", Field(MbDistName)}}},
  {HYPERLINK_MAPI_FOLDERNAME,         kMailboxPage,   {{"Server", Name()}, {"Mailbox", Mailbox()}, {"ContainerId", Field(ExchangeId)}}},
  {HYPERLINK_MAPI_PUBLICFOLDERNAME,   kPublicFolderPage, {{"Server", Name()}, {"Mailbox", MailboxPath()}, {"PublicFolderId", Field(ExchangeId)}}},
  {HYPERLINK_MAPI_MESSAGE,            kMailboxPage,   {{"Server", Name()}, {"Mailbox", Mailbox()}, {"Container", Request()}, {"ContainerId", Request()}, {"MessageId", Field(ExchangeId)}}},
  {HYPERLINK_MAPI_PUBLICFOLDERMESSAGE, kPublicFolderPage, {{"Server", Name()}, {"Mailbox", Mailbox()}, {"PublicFolderId", Request()}, {"MessageId", Field(ExchangeId)}}},
  {HYPERLINK_TOPN_MAILBOX,            kMailboxPage,   {{"Server", Field(RankedServer)}, {"Mailbox", Field(RankedMailbox)}}},
  {HYPERLINK_TOPN_SERVER,             kSingleServerPage,  {{"Server", Value()}}},
  // Kept: ascending, although the link is called a modified-date sort: pages lead there.
  {HYPERLINK_TOPN_MailboxFolder_ModifiedDateSort, kMailboxPage, {{"Server", Field(RankedServer)}, {"Mailbox", Field(RankedMailbox)}, {"ContainerId", Field(RankedContainer)}}, LinkWhen::Always, LinkSort::ByModifiedDate},
  {HYPERLINK_TOPN_MailboxMessage,     kMailboxPage,   {{"Server", Field(RankedServer)}, {"Mailbox", Field(RankedMailbox)}, {"ContainerId", Field(RankedContainer)}, {"MessageId", Field(RankedMessage)}}},
  {HYPERLINK_TOPN_PublicFolderMessage, kPublicFolderPage, {{"Server", Field(RankedServer)}, {"Mailbox", Field(RankedMailbox)}, {"PublicFolderId", Field(RankedPublicFolder)}, {"MessageId", Field(RankedMessage)}}},
};

// The parameters that sort a mailbox or public folder page's second table by modified date. The page's first table,
// the folders, is left as it is; its second, the messages, is sorted.
struct SortParameter { std::string_view name, value; };

inline constexpr SortParameter kModifiedDateSort[] = {
  {kSortFieldParameter, ""}, {kSortFieldParameter, "ModifiedDate"},
  {kSortOrderParameter, ""}, {kSortOrderParameter, kAscendingSort},
};

// The link that an alerted resource gets by the kind of resource that it is, whatever the case of the word.
struct AlertedResourceRow {
  std::string_view attrib3;
  KalvoTableHyperlinkType link;
  std::int32_t alertTypeCode = 0;  // only for alerts of this code; 0 is any
};

inline constexpr AlertedResourceRow kAlertedResources[] = {
  {"Mailbox",        HYPERLINK_ALERT_MAILBOX},
  {"Mailbox Group",  HYPERLINK_MAILBOXGROUP},
  {"Public folder",  HYPERLINK_PUBLICFOLDER},
  {"Server Group",   HYPERLINK_SERVERGROUP},
  {"Server",         HYPERLINK_SERVER,        alerts::kSilentServer},
};
// clang-format on

constexpr bool RowsAreIndexedByType() {
  for (std::size_t i = 0; i < std::size(kLinks); ++i) {
    if (kLinks[i].type != static_cast<std::int32_t>(i)) return false;
  }
  return true;
}
static_assert(RowsAreIndexedByType());

// The rule of a link type; null for one that leads nowhere.
constexpr const LinkRule* RuleOf(KalvoTableHyperlinkType type) {
  return type > HYPERLINK_NONE && type < static_cast<std::int32_t>(std::size(kLinks)) ? &kLinks[type] : nullptr;
}

}  // namespace kalvo::links
