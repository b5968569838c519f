#pragma once

#include <gtest/gtest.h>

#include "fakes/page_fixture.h"
#include "kalvo/mapi_data_src.h"
#include "kalvo/table.h"

namespace kalvo::test {

using std::string_literals::operator""s;
using Texts = std::vector<std::string>;

inline std::string Report(const std::string& text, const std::string& number = "80004005",
                          const std::string& description = "Refused.") {
  return "<p>Error Generating Table: &nbsp;" + text + "<br>Error number: 0x" + number +
         "; &nbsp; Description: " + description + "</p>\r\n";
}

inline std::string Message(const std::string& text) { return "<p>Error Generating Table: &nbsp;" + text + "</p>\r\n"; }

inline constexpr char kRefusedFolder[] = "Mailbox or folder does not exist, or you are not the owner.";

struct SourceFixture : PageFixture {
  explicit SourceFixture(KalvoTableConstants id, std::string_view query = "") : PageFixture(query) {
    context->IncrementTableIndex();
    context->SetName("EXCH01");
    context->SetMailbox("Ken");
    context->SetContainer("\\Inbox");
    live->folders->items = {{{"Name", "Sub"s}}};
    live->messages->items = {{{"Name", "One"s}, {"Size", std::int32_t{10}}}, {{"Name", "Two"s}, {"Size", Null{}}}};
    live->messages->totals = {{"Size", std::int32_t{30}}};
    live->attachments->items = {{{"LongFileName", "a.txt"s}}, {{"LongFileName", "b.txt"s}}, {{"LongFileName", "c"s}}};
    Use(id, "", "");
  }

  void Use(KalvoTableConstants id, std::string_view orderBy, std::string_view order) {
    table->Initialize(TABLETYPE_MAPI, id, "Test", table_ShowTotals, false, false, false, false, {}, "", orderBy, order);
    source->Initialize(*table, "unused", *context);
  }

  std::shared_ptr<Table> table = std::make_shared<Table>(platform);
  std::shared_ptr<MapiDataSrc> source = std::make_shared<MapiDataSrc>();
};

}  // namespace kalvo::test
