#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "kalvo/enumerations.h"

namespace kalvo::links {

// Where a link parameter's value comes from.
enum class From : std::uint8_t {
  None,
  Value,        // the field that the cell shows
  Field,        // another field of the row
  AlertField,   // a field of the row in an alert, a Top-N field by its number elsewhere
  Name,         // the context's name: the server
  Mailbox,      // the context's mailbox
  MailboxPath,  // the context's mailbox, a backslash and the cell's value
  Request,      // the page request's item of the parameter's own name
};

struct LinkSource {
  From from = From::None;
  std::string_view field = {};
  std::string_view topN = {};  // for `AlertField` outside of an alert
};

constexpr LinkSource Value() { return {From::Value}; }
constexpr LinkSource Field(std::string_view name) { return {From::Field, name}; }
constexpr LinkSource TopN(std::string_view number) { return {From::Field, number}; }
constexpr LinkSource AlertOrTopN(std::string_view field, std::string_view number) {
  return {From::AlertField, field, number};
}
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
inline constexpr std::string_view kSingleServer  = "../Resources/SingleServerReports.asp";
inline constexpr std::string_view kMailboxPage   = "../Resources/MailboxSummary.asp";
inline constexpr std::string_view kPublicFolders = "../Resources/PublicFolderSummary.asp";

inline constexpr LinkRule kLinks[] = {
  {HYPERLINK_NONE,                    ""},
  {HYPERLINK_SERVERGROUP,             "../Resources/SingleServerGroupReports.asp",   {{"GroupName", Value()}}},
  {HYPERLINK_MAILBOXGROUP,            "../Resources/SingleMailboxGroupReports.asp",  {{"GroupName", Value()}}},
  {HYPERLINK_SERVERGROUPCONFIG,       "../Configuration/ConfigureServerGroup.asp",   {{"GroupName", Value()}}},
  {HYPERLINK_MAILBOXGROUPCONFIG,      "../Configuration/ConfigureMailboxGroup.asp",  {{"GroupName", Value()}}},
  {HYPERLINK_SERVER,                  kSingleServer,  {{"Server", Value()}}, LinkWhen::Always, LinkSort::AsIs, MissingServer::Grey},
  {HYPERLINK_PUBLICFOLDER,            kPublicFolders, {{"Server", AlertOrTopN("Attrib2", "15")}, {"Mailbox", Value()}, {"PublicFolderId", AlertOrTopN("Attrib5", "3")}}, LinkWhen::Always, LinkSort::ByModifiedDate},
  {HYPERLINK_DISABLEDSINGLEUSER,      "../Tasks/DisabledSingleUser.asp",             {{"Name", Value()}}},
  {HYPERLINK_CAPACITYPLANNINGSERVER,  "../Tasks/CapacityPlanning.asp",               {{"Server", Value()}}},
  {HYPERLINK_SERVER_MANAGED,          kSingleServer,  {{"Server", Value()}}, LinkWhen::ServerIsManaged,  LinkSort::AsIs, MissingServer::Grey},
  {HYPERLINK_ALERT_SERVER_MANAGED,    kSingleServer,  {{"Server", Value()}}, LinkWhen::AlertIsOfAServer, LinkSort::AsIs, MissingServer::Grey},
  {HYPERLINK_ALERT_MAILBOX,           kMailboxPage,   {{"Server", Field("Attrib2")}, {"Mailbox", Field("AlertedResource")}}},
  {HYPERLINK_CHARGEBACK_MAILBOX,      kMailboxPage,   {{"Server", Field("ComputerName")}, {"Mailbox", Field("MbDistName")}}},
  {HYPERLINK_MAPI_FOLDERNAME,         kMailboxPage,   {{"Server", Name()}, {"Mailbox", Mailbox()}, {"ContainerId", Field("ExchangeId")}}},
  {HYPERLINK_MAPI_PUBLICFOLDERNAME,   kPublicFolders, {{"Server", Name()}, {"Mailbox", MailboxPath()}, {"PublicFolderId", Field("ExchangeId")}}},
  {HYPERLINK_MAPI_MESSAGE,            kMailboxPage,   {{"Server", Name()}, {"Mailbox", Mailbox()}, {"Container", Request()}, {"ContainerId", Request()}, {"MessageId", Field("ExchangeId")}}},
  {HYPERLINK_MAPI_PUBLICFOLDERMESSAGE, kPublicFolders, {{"Server", Name()}, {"Mailbox", Mailbox()}, {"PublicFolderId", Request()}, {"MessageId", Field("ExchangeId")}}},
  {HYPERLINK_TOPN_MAILBOX,            kMailboxPage,   {{"Server", TopN("15")}, {"Mailbox", TopN("16")}}},
  {HYPERLINK_TOPN_SERVER,             kSingleServer,  {{"Server", Value()}}},
  // Kept: ascending, although the link is called a modified-date sort.
  {HYPERLINK_TOPN_MailboxFolder_ModifiedDateSort, kMailboxPage, {{"Server", TopN("15")}, {"Mailbox", TopN("16")}, {"ContainerId", TopN("12")}}, LinkWhen::Always, LinkSort::ByModifiedDate},
  {HYPERLINK_TOPN_MailboxMessage,     kMailboxPage,   {{"Server", TopN("15")}, {"Mailbox", TopN("16")}, {"ContainerId", TopN("12")}, {"MessageId", TopN("11")}}},
  {HYPERLINK_TOPN_PublicFolderMessage, kPublicFolders, {{"Server", TopN("15")}, {"Mailbox", TopN("16")}, {"PublicFolderId", TopN("3")}, {"MessageId", TopN("11")}}},
};

// The link that an alerted resource gets by the kind of resource that it is, whatever the case of the word.
struct AlertedResourceRow {
  std::string_view attrib3;
  KalvoTableHyperlinkType link;
  std::string_view alertTypeCode = {};   // only for alerts of this code
};

inline constexpr AlertedResourceRow kAlertedResources[] = {
  {"Mailbox",        HYPERLINK_ALERT_MAILBOX},
  {"Mailbox Group",  HYPERLINK_MAILBOXGROUP},
  {"Public folder",  HYPERLINK_PUBLICFOLDER},
  {"Server Group",   HYPERLINK_SERVERGROUP},
  {"Server",         HYPERLINK_SERVER,        "5023"},
};
// clang-format on

constexpr bool RowsAreIndexedByType() {
  for (std::size_t i = 0; i < std::size(kLinks); ++i) {
    if (kLinks[i].type != static_cast<std::int32_t>(i)) return false;
  }
  return true;
}
static_assert(RowsAreIndexedByType());

}  // namespace kalvo::links
