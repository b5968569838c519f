#include "generator/table_rendering.h"

#include <algorithm>

#include "datasrc/elapsed.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/owned.h"
#include "kalvo/platform/page_host.h"
#include "kalvo/row_source.h"
#include "kalvo/table_column.h"

namespace kalvo {

namespace {

constexpr std::string_view TypeLabel(KalvoTableType type) {
  switch (type) {
    case TABLETYPE_KALVODB: return "KalvoDB Table";
    case TABLETYPE_TOPN: return "TopN Table";
    case TABLETYPE_MAPI: return "MAPI Table";
  }
  return "";
}

constexpr CellLayout kHeading{.header = true, .align = "left"};

}  // namespace

void TableRendering::Write(std::string_view text) {
  if (joined_) return joined_->Put(text);
  trap_([&] { response_.Write(text); });
}

// Writes what has been joined: before anything else may write, and when it has become much.
void TableRendering::Flush() {
  if (!joined_ || joined_->Size() == 0) return;
  trap_([&] { response_.Write(joined_->View()); });
  joined_->Shorten(0);
}

// Makes a piece and writes it. A piece that fails leaves nothing behind, and what was reported while it was made
// stands before it.
template <typename Maker>
void TableRendering::WriteMade(Maker&& maker) {
  cell_.clear();
  if (trap_([&] { maker(cell_); })) Write(cell_);
}

// ---- the whole table ------------------------------------------------------------------------------------

void TableRendering::Render(std::string_view emptyMessage, std::string_view tableName) {
  StartTable();
  if (!Open()) return;
  WriteMade([&](std::string& out) { Append(out, kCrLf, "<a name=\"", table_.Bookmark(), "\"></a>", kCrLf); });
  if (!tableName.empty()) WriteTitle(tableName);

  trap_([&] { page_.records = Held(source_)->RecordCount(); });
  if (page_.records == 0) {
    // Kept: the source of an empty table is not closed, as a page's own source sees; it goes with the rendering.
    WriteMade([&](std::string& out) { Append(out, "<p><em>", emptyMessage, "</em></p>", kCrLf); });
    return;
  }
  ChoosePage();
  if (page_.IsPaged()) {
    table_.ShowEntriesFromNowOn();
    if (!trap_([&] { AppendNavigationRow(navigationRow_); })) navigationRow_.clear();
  }
  if (table_.ShowsEntries() || table_.Definition().showLastScan) WriteEntries();
  WriteMade([&](std::string& out) { display_.AppendDetailTableStart(out, table_.Bookmark()); });
  if (page_.IsPaged()) Write(navigationRow_);
  WriteWarning();

  const Elapsed elapsed(table_.GetPlatform());
  MoveToFirstRow();
  WriteRows();
  trap_([&] { context_.Trace("Time", [&](std::string& out) { out += elapsed.Report("Table render"); }); });
  if (page_.IsPaged()) Write(navigationRow_);
  WriteMade([&](std::string& out) { display_.AppendDetailTableEnd(out); });
  trap_([&] { Held(source_)->CloseDS(); });
}

void TableRendering::StartTable() {
  std::int16_t index = 0;
  trap_([&] { index = context_.IncrementTableIndex(); });
  trap_([&] {
    context_.TraceTable([&](std::string& out) {
      Append(out, "<p>Table Index: ", index, " (", TypeLabel(table_.Definition().type), ")</p>");
    });
  });
  table_.SetBookmark(Built([&](std::string& out) { Append(out, context_.TableIndex(), "chart"); }));
}

bool TableRendering::Open() {
  std::int16_t status = 0;
  trap_([&] { source_ = table_.GetDataSrc(context_); });
  trap_([&] { status = Held(source_)->OpenDS(); });
  if (status == 0) return true;
  trap_([&] { context_.FailureMessage("Failure retrieving the table information.", false); });
  return false;
}

void TableRendering::ChoosePage() {
  std::int16_t first = 0;
  std::int16_t size = 0;
  trap_([&] { size = context_.TablePageSizeInformation(); });
  trap_([&] { first = context_.TableFirstRowInformation(); });
  page_ = Paging::Of(page_.records, size, first);
}

// ---- above the rows -------------------------------------------------------------------------------------

void TableRendering::WriteTitle(std::string_view tableName) {
  Write("<table border=\"0\">\r\n<tr>");
  WriteMade([&](std::string& out) { display_.AppendCell(out, tableName, kHeading); });
  Write("</tr></table>\r\n");
}

void TableRendering::WriteEntries() {
  Write("<table border=\"0\">\r\n<tr>");
  if (table_.ShowsEntries()) {
    WriteMade([&](std::string& out) {
      display_.AppendCell(out, "Number of Entries:", kHeading);
      display_.AppendCell(out, std::to_string(page_.records), kHeading);
      display_.AppendCell(out, "");
    });
  }
  Write("</tr>\r\n");
  if (page_.IsPaged()) {
    WriteMade([&](std::string& out) {
      out += "<tr>";
      display_.AppendCell(out, "Displaying Entries:", kHeading);
      const std::string shown = Built([&](std::string& text) { Append(text, page_.first, " - ", page_.last); });
      display_.AppendCell(out, shown, kHeading);
      Append(out, "</tr>", kCrLf);
    });
  } else {
    trap_([&] {
      context_.TraceTable(
          [&](std::string& out) { Append(out, "<p>First: ", page_.first, "; Last: ", page_.last, "</p>"); });
    });
  }
  Write("</table>\r\n");
}

void TableRendering::WriteWarning() {
  bool administrator = false;
  trap_([&] { administrator = context_.KalvoAdministrator(); });
  if (!administrator || !table_.Definition().isForm) return;
  WriteMade([&](std::string& out) {
    AppendWideRow(out,
                  page_.IsPaged() ? "WARNING: Sorting/paging will lose unsubmitted changes"
                                  : "WARNING: Sorting will lose unsubmitted changes",
                  "left");
  });
}

// A row of one header cell that is as wide as the table has columns, hidden ones included.
void TableRendering::AppendWideRow(std::string& out, std::string_view content, std::string_view align) {
  const std::string span =
      table_.Definition().columns.size() > 1 ? std::to_string(table_.Definition().columns.size()) : std::string();
  display_.AppendTableRowStart(out);
  display_.AppendCell(out, content, {.header = true, .columnSpan = span, .align = align});
  display_.AppendTableRowEnd(out);
}

// ---- paging ---------------------------------------------------------------------------------------------

void TableRendering::AppendNavigationRow(std::string& out) {
  std::string left, right;
  AppendPagingLinks(left, right);
  const std::string inner = Built([&](std::string& table) {
    table += "<table border=\"0\" width=\"100%\">";
    display_.AppendTableRowStart(table);
    display_.AppendCell(table, left, {.align = "left", .noWrap = true});
    display_.AppendCell(table, right, {.align = "right", .noWrap = true});
    display_.AppendTableRowEnd(table);
    table += "</table>";
  });
  AppendWideRow(out, inner, "center");
}

// The links to other pages carry the page size as the request has it. A part whose making fails is left out.
void TableRendering::AppendPagingLinks(std::string& left, std::string& right) {
  const auto part = [&](std::string& out, auto&& maker) {
    const auto start = out.size();
    if (!trap_([&] { maker(out); })) out.resize(start);
  };
  if (!page_.StartsAtFirst()) {
    part(left, [&](std::string& out) {
      AppendPagingLink(out, "First", 1, context_.TablePageSizeInformation());
      out += ' ';
      AppendPagingLink(out, "Previous", std::max(page_.first - page_.size, std::int64_t{1}),
                       context_.TablePageSizeInformation());
    });
  }
  if (!page_.EndsAtLast()) {
    part(right, [&](std::string& out) {
      AppendPagingLink(out, "Next", page_.last + 1, context_.TablePageSizeInformation());
      out += ' ';
      AppendPagingLink(out, "Last", -1, context_.TablePageSizeInformation());
    });
  }
  if (page_.size < kLargestPageSize) {
    part(right, [&](std::string& out) {
      out += ' ';
      AppendPagingLink(out, "All", 1, kLargestPageSize);
    });
  }
}

void TableRendering::AppendPagingLink(std::string& out, std::string_view image, std::int64_t first, std::int64_t size) {
  const std::string field = context_.TableSortFieldInformation();
  const std::string order = context_.TableSortOrderInformation();
  const std::string link = context_.TableURL(field, order, std::to_string(first), std::to_string(size));
  const std::string content = Built([&](std::string& text) {
    Append(text, "<img src=\"../Images/Controls/", image, ".gif\" height=\"31\" width=\"40\" border=\"0\">");
  });
  display_.AppendAnchor(out, link, table_.Bookmark(), "", content);
}

// ---- rows -----------------------------------------------------------------------------------------------

void TableRendering::MoveToFirstRow() {
  trap_([&] { Held(source_)->MoveFirst(); });
  for (std::int64_t row = 1; row < page_.first; ++row) {
    trap_([&] { Held(source_)->MoveNext(); });
  }
}

void TableRendering::WriteRows() {
  WriteRow(Phase::Header);
  if (WriteDataRows()) WriteRow(Phase::Totals);
}

void TableRendering::WriteRow(Phase phase) {
  WriteMade([&](std::string& out) { display_.AppendTableRowStart(out); });
  WriteCells(phase);
  WriteMade([&](std::string& out) { display_.AppendTableRowEnd(out); });
}

// The rows end by their count alone; no source is asked whether it has reached its end. The last row's end stands
// behind the way to the totals. True when they are reached.
bool TableRendering::WriteDataRows() {
  if (NobodyLooksOn()) BindColumns();
  if (joined_) return WriteStoredRows();
  bool totals = false, last = false;
  for (std::int64_t row = FirstRow(); !last; ++row) {
    WriteMade([&](std::string& out) { display_.AppendTableRowStart(out); });
    WriteCells(Phase::Data);
    trap_([&] { Held(source_)->MoveNext(); });
    last = row >= page_.last;
    if (last) totals = MoveToTotals();
    WriteMade([&](std::string& out) { display_.AppendTableRowEnd(out); });
  }
  return totals;
}

bool TableRendering::MoveToTotals() {
  if (table_.Definition().totals != table_ShowTotals) return false;
  // A source that cannot be asked has no totals either.
  std::int16_t status = -1;
  trap_([&] { status = Held(source_)->MoveTotals(); });
  return status == 0;
}

void TableRendering::WriteCells(Phase phase) {
  bool firstCell = true;
  // A copy: a script that is asked for a cell may initialise the table again.
  rowColumns_ = table_.Definition().columns;
  for (const std::int16_t id : rowColumns_) {
    trap_([&] { column_ = columns_.Column(id); });
    WriteCell(phase, firstCell);
  }
}

void TableRendering::WriteCell(Phase phase, bool& firstCell) {
  WriteMade([&](std::string& out) {
    TableColumn& column = *Held(column_);
    if (phase == Phase::Header) return column.AppendHeader(out, context_, display_);
    if (phase == Phase::Data) return column.AppendData(out, context_, display_, *Held(source_));
    column.AppendTotal(out, context_, display_, *Held(source_), firstCell);
  });
}

// ---- stored rows ----------------------------------------------------------------------------------------

bool TableRendering::NobodyLooksOn() const {
  return !context_.SeesCalls() && !display_.SeesCalls() && !response_.SeesCalls() && !columns_.SeesCalls();
}

// From here to the last row nothing can change what a column is, and what the rows are made of is written in pieces.
void TableRendering::BindColumns() {
  bool isBound = false;
  bound_.clear();
  const bool found = trap_([&] {
    for (const std::int16_t id : table_.Definition().columns) {
      BoundCells cells;
      cells.column = Held(columns_.Column(id));
      cells.cells = cells.column->Bind(context_, display_, *Held(source_));
      isBound = isBound || cells.cells;
      bound_.push_back(std::move(cells));
    }
  });
  if (found && isBound) joined_.emplace();
}

bool TableRendering::WriteStoredRows() {
  constexpr std::size_t kPiece = 32 << 10;
  const RowConstant start(display_.TableRowStart()), end(display_.TableRowEnd());
  RowSource& source = *source_;
  bool totals = false, last = false;
  for (std::int64_t row = FirstRow(); !last; ++row) {
    joined_->Put(start);
    WriteStoredCells(source);
    trap_([&] { source.MoveNext(); });
    last = row >= page_.last;
    if (last || joined_->Size() > kPiece) Flush();
    if (last) totals = MoveToTotals();
    joined_->Put(end);
  }
  Flush();
  joined_.reset();
  return totals;
}

void TableRendering::WriteStoredCells(RowSource& source) {
  bool firstCell = true;
  const StoredValue* row = nullptr;
  trap_([&] { row = source.StoredRow(); });
  for (const BoundCells& column : bound_) {
    const std::size_t start = joined_->Size();
    bool made = true;
    if (!trap_([&] { made = column.cells && column.cells->AppendCell(*joined_, row); })) joined_->Shorten(start);
    if (made) continue;
    Flush();
    column_ = column.column;
    WriteCell(Phase::Data, firstCell);
  }
}

}  // namespace kalvo
