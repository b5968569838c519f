// Script objects as row source, column and column catalogue.
#include <deque>

#include "host/script/late_binding/adapters.h"
#include "host/script/late_binding/late_bound.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::host {
namespace {

class ScriptRowSource : public RowSource, public LateBound {
 public:
  ScriptRowSource(Engine& engine, duk_idx_t index) : LateBound(engine, index, "row source") {}

  std::int16_t OpenDS() override { return ToInt16(Ask("OpenDS")); }
  std::int32_t CloseDS() override { return ToInt32(Ask("CloseDS")); }
  std::int16_t MoveFirst() override { return Move("MoveFirst"); }
  std::int16_t MoveNext() override { return Move("MoveNext"); }
  std::int16_t MoveTotals() override { return Move("MoveTotals"); }

  std::string_view GetField(std::string_view szFieldName) override {
    return texts_.emplace_back(AskText("GetField", szFieldName));
  }

  std::optional<std::string_view> GetIdentifier(std::string_view szFieldName) override {
    const Value identifier = Ask("GetField", szFieldName, true);
    if (IsNull(identifier)) return std::nullopt;
    return texts_.emplace_back(TextOf(Reference().Home(), identifier));
  }

  std::int32_t RecordCount() override { return ToInt32(Ask("RecordCount")); }
  std::int16_t GetRowIndex() override { return ToInt16(Ask("GetRowIndex")); }

 private:
  std::int16_t Move(const char* member) {
    const std::int16_t status = ToInt16(Ask(member));
    texts_.clear();
    return status;
  }

  std::deque<std::string> texts_;  // of the current row: each stays where it is until the source moves
};

class ScriptColumn : public TableColumn, public LateBound {
 public:
  ScriptColumn(Engine& engine, duk_idx_t index) : LateBound(engine, index, "column") {}

  void AppendHeader(std::string& out, Context& context, Display& display) override {
    AppendAnswer(out, "ConstructHTMLHeader", context, display);
  }

  void AppendData(std::string& out, Context& context, Display& display, RowSource& row) override {
    AppendAnswer(out, "ConstructHTMLData", context, display, row);
  }

  // The flag goes as a box, and comes back also from a column that fails.
  void AppendTotal(std::string& out, Context& context, Display& display, RowSource& totals, bool& firstCell) override {
    Reach("ConstructHTMLTotal", [&](Engine& engine) {
      duk_context* script = engine.Context();
      const duk_idx_t box = duk_push_object(script);
      duk_push_boolean(script, firstCell);
      duk_put_prop_literal(script, box, "value");
      const auto readBack = [&] {
        duk_get_prop_literal(script, box, "value");
        firstCell = ToBoolean(ValueAt(engine, -1));
        duk_pop(script);
      };
      const auto failure = engine.Attempt([&] { AppendTotalCell(engine, out, context, display, totals, box); });
      readBack();
      if (!failure || engine.HasEnded()) return;
      engine.Note(Named("ConstructHTMLTotal"), *failure);  // here, where its place is still known
      throw Error(failure->number, failure->description);
    });
  }

 private:
  // A cell that a member answers; one that answers none leaves the row without it.
  template <typename... A>
  void AppendAnswer(std::string& out, const char* member, A&&... arguments) {
    Reach(member, [&](Engine& engine) {
      PushAnswer(engine, member, arguments...);
      AppendCell(engine, out, member);
    });
  }

  void AppendCell(Engine& engine, std::string& out, const char* member) const {
    if (duk_is_undefined(engine.Context(), -1)) NoteNoAnswer(engine, member, "the function returned nothing");
    out += TextOf(engine, -1);
  }

  void AppendTotalCell(Engine& engine, std::string& out, Context& context, Display& display, RowSource& totals,
                       duk_idx_t box) const {
    duk_context* script = engine.Context();
    duk_require_stack(script, 40);
    if (PushMember(engine, "ConstructHTMLTotal")) {
      PushArgument(engine, context);
      PushArgument(engine, display);
      PushArgument(engine, totals);
      duk_dup(script, box);
      duk_call_method(script, 4);
    }
    AppendCell(engine, out, "ConstructHTMLTotal");
  }
};

class ScriptColumnCatalogue : public ColumnCatalogue, public LateBound {
 public:
  ScriptColumnCatalogue(Engine& engine, duk_idx_t index) : LateBound(engine, index, "column catalogue") {}

  std::shared_ptr<TableColumn> Column(std::int16_t id) override {
    std::shared_ptr<TableColumn> column;
    Reach("GetColumn", [&](Engine& engine) {
      PushAnswer(engine, "GetColumn", id);
      if (duk_is_object(engine.Context(), -1)) {
        column = InterfaceAt<TableColumn>(engine, -1);
      } else {
        NoteNoAnswer(engine, "GetColumn", Built([&](std::string& out) { Append(out, "there is no column ", id); }));
      }
    });
    return column;
  }
};

}  // namespace

template <>
std::shared_ptr<RowSource> Adapt<RowSource>(Engine& engine, duk_idx_t index) {
  return std::make_shared<ScriptRowSource>(engine, index);
}

template <>
std::shared_ptr<TableColumn> Adapt<TableColumn>(Engine& engine, duk_idx_t index) {
  return std::make_shared<ScriptColumn>(engine, index);
}

template <>
std::shared_ptr<ColumnCatalogue> Adapt<ColumnCatalogue>(Engine& engine, duk_idx_t index) {
  return std::make_shared<ScriptColumnCatalogue>(engine, index);
}

}  // namespace kalvo::host
