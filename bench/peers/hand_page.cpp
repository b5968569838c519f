#include "bench/peers/hand_page.h"

#include <algorithm>

namespace kalvo::peers {
namespace {

struct Heading {
  std::string_view name, sort;  // sort "": not sorted by
};

struct Frame {
  std::string_view title, url;
  int columns;
  const Heading* headings;
  std::size_t shown;
};

constexpr Heading kAlertHeadings[] = {
    {"Resource Type", "Attrib3"}, {"Alerted Resource", "AlertedResource"},
    {"Alert", "Attrib6"},         {"Threshold Value", ""},
    {"Scanned Value", ""},        {"Messages considered old before", ""},
    {"Group Name", "Attrib4"},    {"Time of Alert", "AlertTime"},
    {"Server Name", "Attrib2"},
};
constexpr Heading kServerHeadings[] = {
    {"Domain Name", "DomainName"}, {"Server Name", "ComputerName"}, {"Mailboxes", "Mailboxes"},
    {"Mailbox Space", "MBSpace"},  {"Public Folders", "PBFolders"}, {"Public Folder Space", "PbSpace"},
};
constexpr Frame kAlerts{"Current Alerts", "/KalvoforExchange/Tasks/CurrentAlerts.asp", 10, kAlertHeadings,
                        std::size(kAlertHeadings)};
constexpr Frame kServers{"Organization Site Server Summary", "/KalvoforExchange/Resources/SiteServerSummary.asp", 6,
                         kServerHeadings, std::size(kServerHeadings)};

constexpr const Frame& FrameOf(const Report<Alert>&) { return kAlerts; }
constexpr const Frame& FrameOf(const Report<Server>&) { return kServers; }

constexpr std::size_t kFrameRoom = 32 << 10, kRowRoom = 2 << 10;
constexpr std::int64_t kAllRows = 1000;  // the page size behind "All"
constexpr std::int64_t kLastPage = -1;

// The rows that a page shows. A rest of less than a quarter page is shown with the page before it.
struct Shown {
  std::int64_t first, last, count;

  Shown(std::int64_t all, const Page& page) : first(page.first), last(page.first + page.size - 1), count(all) {
    if (last > count || (count - last) * 4 < page.size) last = count;
  }
  bool IsPart() const { return first != 1 || last != count; }
};

// ---- cells ---------------------------------------------------------------------------------------------

bool IsBlank(std::string_view text) {
  for (const char c : text) {
    if (c != ' ' && c != '\t') return false;
  }
  return true;
}

template <std::size_t N>
bool IsKind(std::string_view kind, const char (&lower)[N]) {
  if (kind.size() != N - 1) return false;
  for (std::size_t i = 0; i + 1 < N; ++i) {
    const char c = kind[i] >= 'A' && kind[i] <= 'Z' ? static_cast<char>(kind[i] + ('a' - 'A')) : kind[i];
    if (c != lower[i]) return false;
  }
  return true;
}

template <bool B>
inline void Text(Pen<B>& pen, std::string_view text) {
  IsBlank(text) ? pen << "&nbsp;" : pen.Html(text);
}

template <bool B>
inline void LeftCell(Pen<B>& pen, std::string_view text) {
  pen << "<td align=\"left\">";
  Text(pen, text);
  pen << "</td>";
}

template <bool B>
inline void EndLink(Pen<B>& pen, std::string_view text) {
  pen << "\" target=\"_top\">";
  IsBlank(text) ? pen << "&nbsp;&nbsp;&nbsp;" : pen.Html(text);
  pen << "</a></td>";
}

template <bool B>
inline void ServerCell(Pen<B>& pen, std::string_view name, bool isMissing) {
  isMissing ? pen << "<td align=\"left\" bgcolor=\"#CCCCCC\">" : pen << "<td align=\"left\">";
  (pen << "<a href=\"../Resources/SingleServerReports.asp?Server=").Url(name);
  EndLink(pen, name);
}

// What an alert is about, with a link to it where there is a page of it.
template <bool B>
inline void ResourceCell(Pen<B>& pen, const Alert& row) {
  if (IsKind(row.kind, "server") && row.code == 5023) return ServerCell(pen, row.resource, row.isMissing);
  const auto link = [&] { return pen << "<td align=\"left\"><a href=\"../Resources/"; };
  if (IsKind(row.kind, "mailbox")) {
    pen = link();
    (pen << "MailboxSummary.asp?Server=").Url(row.computer);
    (pen << "&amp;Mailbox=").Url(row.resource);
  } else if (IsKind(row.kind, "mailbox group")) {
    pen = link();
    (pen << "SingleMailboxGroupReports.asp?GroupName=").Url(row.resource);
  } else if (IsKind(row.kind, "server group")) {
    pen = link();
    (pen << "SingleServerGroupReports.asp?GroupName=").Url(row.resource);
  } else if (IsKind(row.kind, "public folder")) {
    pen = link();
    (pen << "PublicFolderSummary.asp?Server=").Url(row.computer);
    (pen << "&amp;Mailbox=").Url(row.resource);
    (pen << "&amp;PublicFolderId=").Url(row.folder);
    pen << "&amp;Sort=&amp;Sort=ModifiedDate&amp;SortOrder=&amp;SortOrder=ASC";
  } else {
    return LeftCell(pen, row.resource);
  }
  EndLink(pen, row.resource);
}

// ---- rows ----------------------------------------------------------------------------------------------

// A text grows twelvefold at the most: "&quot;" as a text and "%22" in an address, twice.
std::size_t RoomOf(const Alert& row) {
  return kRowRoom +
         12 * (row.resource.size() + row.computer.size() + row.kind.size() + row.group.size() + row.folder.size() +
               row.what.size() + row.oldBefore.size() + row.threshold.size() + row.found.size());
}
std::size_t RoomOf(const Server& row) { return kRowRoom + 12 * (row.domain.size() + row.computer.size()); }

template <bool B>
inline char* Row(Pen<B> pen, const Alert& row) {
  pen << "<tr>\r\n";
  LeftCell(pen, row.kind);
  ResourceCell(pen, row);
  for (const std::string_view text : {row.what, row.threshold, row.found, row.oldBefore, row.group})
    LeftCell(pen, text);
  pen << "<td nowrap align=\"left\">";
  row.time.year > 1950 ? pen.Time(row.time) : pen << "&nbsp;";
  pen << "</td>";
  row.computer.empty() || row.code == 5018 ? LeftCell(pen, row.computer) : ServerCell(pen, row.computer, row.isMissing);
  pen << "</tr>\r\n";
  return pen.at;
}

template <bool B>
inline char* Row(Pen<B> pen, const Server& row) {
  pen << "<tr>\r\n";
  LeftCell(pen, row.domain);
  ServerCell(pen, row.computer, row.isMissing);
  (pen << "<td align=\"right\">").Grouped(row.mailboxes);
  (pen << "</td><td align=\"right\">").Megabytes(row.mailboxBytes);
  (pen << "</td><td align=\"right\">").Grouped(row.folders);
  (pen << "</td><td align=\"right\">").Megabytes(row.folderBytes);
  pen << "</td></tr>\r\n";
  return pen.at;
}

template <bool B>
void Totals(Pen<B>&, const Report<Alert>&) {}

template <bool B>
void Totals(Pen<B>& pen, const Report<Server>& report) {
  constexpr char kNext[] = "</strong></td><td align=\"right\"><strong>";
  pen << "<tr>\r\n<td><strong>TOTAL</strong></td><td>&nbsp;</td><td align=\"right\"><strong>";
  pen.Grouped(report.totals.mailboxes) << kNext;
  pen.Megabytes(report.totals.mailboxBytes) << kNext;
  pen.Grouped(report.totals.folders) << kNext;
  pen.Megabytes(report.totals.folderBytes) << "</strong></td></tr>\r\n";
}

// ---- what stands around them -----------------------------------------------------------------------------

struct Turn {
  std::string_view sort, order;
  std::int64_t first, size;
};

template <bool B>
void LinkToSelf(Pen<B>& pen, const Frame& frame, const Turn& turn) {
  pen << "<a href=\"" << frame.url << "?Sort=" << turn.sort << "&amp;SortOrder=" << turn.order << "&amp;First=";
  turn.first == kLastPage ? pen << "%2D1" : pen.Number(turn.first);
  pen << "&amp;PageSize=";
  pen.Number(turn.size) << "#1chart\">";
}

template <bool B>
void Arrow(Pen<B>& pen, const Frame& frame, std::string_view image, const Turn& turn) {
  LinkToSelf(pen, frame, turn);
  pen << "<img src=\"../Images/Controls/" << image << ".gif\" height=\"31\" width=\"40\" border=\"0\"></a>";
}

template <bool B>
void Navigation(Pen<B>& pen, const Frame& frame, const Shown& shown, const Page& page) {
  const std::int64_t size = page.size;
  (pen << "<tr>\r\n<th colspan=\"").Number(frame.columns);
  pen << "\" align=\"center\"><table border=\"0\" width=\"100%\"><tr>\r\n<td nowrap align=\"left\">";
  if (shown.first == 1) {
    pen << "&nbsp;";
  } else {
    Arrow(pen, frame, "First", {"", "", 1, size});
    Arrow(pen << ' ', frame, "Previous", {"", "", std::max<std::int64_t>(shown.first - size, 1), size});
  }
  pen << "</td><td nowrap align=\"right\">";
  const bool isEnd = shown.last == shown.count;
  if (!isEnd) {
    Arrow(pen, frame, "Next", {"", "", shown.last + 1, size});
    Arrow(pen << ' ', frame, "Last", {"", "", kLastPage, size});
  }
  if (size < kAllRows) {
    Arrow(pen << ' ', frame, "All", {"", "", 1, kAllRows});
  } else if (isEnd) {
    pen << "&nbsp;";
  }
  pen << "</td></tr>\r\n</table></th></tr>\r\n";
}

template <bool B>
void Header(Pen<B>& pen, const Frame& frame, const Heading& heading, std::int64_t size) {
  pen << "<th align=\"center\" valign=\"bottom\"><div align=\"center\"><center><table border=\"0\" cellpadding=\"2\" "
         "cellspacing=\"0\">\r\n<tr><th align=\"center\" valign=\"bottom\">"
      << heading.name << "</th></tr>\r\n<tr><td nowrap align=\"center\">";
  if (heading.sort.empty()) {
    pen << "<img border=\"0\" src=\"../Images/Controls/BlankSort.gif\" width=\"17\" height=\"16\">";
  } else {
    LinkToSelf(pen, frame, {heading.sort, "ASC", 1, size});
    pen << "<img alt=\"Sort Ascending\" border=\"0\" src=\"../Images/Controls/Up.gif\" width=\"20\" height=\"16\"></a>";
    LinkToSelf(pen, frame, {heading.sort, "DESC", 1, size});
    pen << "<img alt=\"Sort Descending\" border=\"0\" src=\"../Images/Controls/Down.gif\" width=\"20\" "
           "height=\"16\"></a>";
  }
  pen << "</td></tr>\r\n</table></center></div>\r\n</th>";
}

template <bool B>
void Top(Pen<B>& pen, const Frame& frame, const Shown& shown, const Page& page) {
  pen << "\r\n<a name=\"1chart\"></a>\r\n<table border=\"0\">\r\n<tr><th align=\"left\">" << frame.title
      << "</th></tr></table>\r\n<table border=\"0\">\r\n<tr><th align=\"left\">Number of Entries:</th>"
         "<th align=\"left\">";
  pen.Number(shown.count) << "</th><td>&nbsp;</td></tr>\r\n";
  if (shown.IsPart()) {
    pen << "<tr><th align=\"left\">Displaying Entries:</th><th align=\"left\">";
    pen.Number(shown.first) << " - ";
    pen.Number(shown.last) << "</th></tr>\r\n";
  }
  pen << "</table>\r\n\r\n<table border=\"1\" cellpadding=\"2\" cellspacing=\"0\">\r\n";
  if (shown.IsPart()) Navigation(pen, frame, shown, page);
  pen << "<tr>\r\n";
  for (std::size_t i = 0; i < frame.shown; ++i) Header(pen, frame, frame.headings[i], page.size);
  pen << "</tr>\r\n";
}

}  // namespace

template <bool kBlocks>
char* HandPage<kBlocks>::Room(std::size_t bytes) {
  if (capacity_ - size_ < bytes) {
    capacity_ = std::max(2 * capacity_, size_ + bytes);
    auto larger = std::make_unique_for_overwrite<char[]>(capacity_);
    if (size_ > 0) std::memcpy(larger.get(), text_.get(), size_);
    text_ = std::move(larger);
  }
  return text_.get() + size_;
}

template <bool kBlocks>
template <typename Row>
std::string_view HandPage<kBlocks>::RenderReport(const Report<Row>& report, const Page& page) {
  const Frame& frame = FrameOf(report);
  const Shown shown(report.count, page);
  size_ = 0;
  const auto end = [&](const char* at) { size_ = static_cast<std::size_t>(at - text_.get()); };
  Pen<kBlocks> top{Room(kFrameRoom)};
  Top(top, frame, shown, page);
  end(top.at);
  for (std::int64_t i = shown.first; i <= shown.last; ++i) {
    const Row& row = report.rows[static_cast<std::size_t>(i - report.first)];
    end(peers::Row(Pen<kBlocks>{Room(RoomOf(row))}, row));
  }
  Pen<kBlocks> bottom{Room(kFrameRoom)};
  Totals(bottom, report);
  if (shown.IsPart()) Navigation(bottom, frame, shown, page);
  bottom << "\r\n</table>\r\n";
  end(bottom.at);
  return {text_.get(), size_};
}

template class HandPage<false>;
template class HandPage<true>;

}  // namespace kalvo::peers
