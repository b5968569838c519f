#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "kalvo/row_source.h"

namespace kalvo {

class Context;
class Table;

// What the library's own row sources share: the table whose rows they open, the page it is on, and where they stand.
class TableRowSource : public RowSource {
 public:
  ~TableRowSource() override;

  // Says whose rows to open and on which page; `ResourceName` is the name that the table is asked for ("EXCH01").
  // The three are kept until the source is dropped. May be called again, and then says so again.
  void Initialize(Table& KalvoTable, std::string_view ResourceName, Context& Ctxt);

  std::int32_t RecordCount() override { return recordCount_; }
  std::int16_t GetRowIndex() override;

 protected:
  TableRowSource();

  // Forgets what the source knows of the rows of another table.
  virtual void Forget() {}

  // The text that is answered next takes the memory of the last one, and gives it back filled. A question that a
  // script asks in between finds nothing here and makes a text of its own.
  std::string TakeAnswer();
  std::string_view KeepAnswer(std::string text) { return answer_ = std::move(text); }

  // The number of the next row. Fails with 6 where 32 bits end.
  std::int32_t NextRow() const;

  std::shared_ptr<Table> table_;
  std::shared_ptr<Context> context_;
  std::string resourceName_;
  std::int32_t recordCount_ = 0;
  std::int32_t rowIndex_ = 0;

 private:
  std::string answer_;
};

}  // namespace kalvo
