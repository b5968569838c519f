#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "kalvo/column.h"

namespace kalvo {

// A column's buffer, taken for the making of one cell and given back with what it has grown to. A cell that is
// made while another one of the same column is under way gets an empty buffer of its own.
class Scratch {
 public:
  explicit Scratch(std::string& kept) : kept_(kept), text_(std::move(kept)) { text_.clear(); }
  ~Scratch() { kept_ = std::move(text_); }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  std::string& operator*() { return text_; }
  std::string* operator->() { return &text_; }

 private:
  std::string& kept_;
  std::string text_;
};

// One data cell under way: the column, the row it reads, and what has been decided so far.
struct RowCell {
  const std::shared_ptr<const ColumnFacts>& column;  // as it is defined now
  Context& context;
  Display& display;
  RowSource& row;
  std::string& value;            // the field's value, once the format has read it
  std::string& text;             // what the cell shows
  std::string& url;              // where it leads, "" for nowhere
  KalvoTableHyperlinkType link;  // the column's, unless an alerted resource has one of its own
  bool alertedResource = false;
  std::string_view color = {};
};

// Makes `text` from the row by the column's format. Reads `value` where the format shows one, and may choose the
// link. Fails with 13 for a value that the format cannot read.
void FormatCell(RowCell& cell);

// Makes `url` by the cell's link type, and the colour of a server that has disappeared.
void LinkCell(RowCell& cell);

// Adds the parameters that sort a mailbox or public folder page's second table by modified date.
void AppendModifiedDateSort(std::string& url, const Display& display);

}  // namespace kalvo
