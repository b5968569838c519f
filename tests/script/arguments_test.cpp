#include "host/script/binding/arguments.h"

#include "host/script/binding/binding.h"
#include "host/script/binding/wrappers.h"
#include "host/script/page/classes.h"
#include "kalvo/table_constants.h"
#include "script/page_runner.h"

namespace kalvo::test {
namespace {

using namespace host;

class Arguments : public PageTest {
 protected:
  // What an expression gives, with a display `d`, a context `x` and a table `t` at hand.
  std::string Value(const std::string& expression) {
    return Script(
        "var d = Server.CreateObject('KalvoTables.Display'), x = Server.CreateObject('KalvoTables.Context'),"
        "t = Server.CreateObject('KalvoTables.Table'), box; Response.Write(" +
        expression + ");");
  }
};

TEST_F(Arguments, ConvertAsTheOperationTakesThem) {
  const struct {
    const char* why;
    const char* expression;
    const char* value;
  } kCases[] = {
      {"text of a number", "d.TrimTabsAndSpaces(1e20)", "1E+20"},
      {"text of a fraction", "d.TrimTabsAndSpaces(0.1)", "0.1"},
      {"text of a boolean", "d.TrimTabsAndSpaces(true)", "True"},
      {"text of null", "'[' + d.TrimTabsAndSpaces(null) + ']'", "[]"},
      {"text of undefined", "'[' + d.TrimTabsAndSpaces(undefined) + ']'", "[]"},
      {"text that was left out", "'[' + d.TrimTabsAndSpaces() + ']'", "[]"},
      {"text of a boxed text", "d.TrimTabsAndSpaces(new String('x'))", "x"},
      {"text of a boxed number", "d.TrimTabsAndSpaces(new Number(7))", "7"},
      {"text of a boxed boolean", "d.TrimTabsAndSpaces(new Boolean(false))", "False"},
      {"text of a date", "d.TrimTabsAndSpaces(new Date(1999, 0, 2, 15, 4, 5))", "1/2/1999 3:04:05 PM"},
      {"text of a day", "d.TrimTabsAndSpaces(new Date(1999, 0, 2))", "1/2/1999"},
      {"text outside of the basic plane", "d.TrimTabsAndSpaces('\\uD83D\\uDE00')", "\U0001F600"},
      {"a lone surrogate", "d.TrimTabsAndSpaces('a\\uD83Dz')", "a\xEF\xBF\xBDz"},
      {"a whole number", "d.AddInputField('a', 2147483647)", " a=\"2147483647\""},
      {"a large number", "d.AddInputField('a', 4294967296)", " a=\"4294967296\""},
      {"negative zero", "d.AddInputField('a', -0)", " a=\"0\""},
      {"numbers from text", "(x.SetTopN('3'), x.GetTopN())", "3"},
      {"halves round to even", "(x.SetTopN(2.5), x.GetTopN())", "2"},
      {"empty is zero", "(x.SetTopN(5), x.SetTopN(undefined), x.GetTopN())", "0"},
      {"true is minus one", "(x.SetTopN(true), x.GetTopN())", "-1"},
      {"a date that is none, where it is caught", "d.Kalvo_FormatDateTime(new Date(NaN), 'D')", "D"},
      {"a date that is none, as a floating one", "d.Kalvo_FormatDateTimeFloat(new Date(NaN))", ""},
      {"a default of text", "d.AnchorStart('u', undefined, undefined)", "<a href=\"u\">"},
      {"null is no default", "d.AnchorStart('u', null, '_top')", "<a href=\"u\" target=\"_top\">"},
      {"too many arguments", "d.AnchorStart('u', '', '', 1, 2, 3)", "<a href=\"u\">"},
      {"empty, for an argument of any type", "d.AddInputFieldIfNotNull('a', undefined)", ""},
      {"false is a value", "d.AddInputFieldIfNotNull('a', false)", " a=\"False\""},
      {"an image", "d.GraphicInput(['p', 1, 2, 'more'], 'A')",
       "<img alt=\"A\" border=\"0\" src=\"p\" width=\"1\" height=\"2\">"},
      {"a replaced image", "(d.FolderGraphicID = ['p', '20', 21], d.FolderGraphicID.join())", "p,20,21"},
      {"a copy of an image", "(d.FolderGraphicID[1] = 99, d.FolderGraphicID[1])", "16"},
      {"a date", "d.Kalvo_FormatDateTimeFloat(new Date(1999, 0, 2, 3, 4, 5))", "1/2/1999 3:04:05 AM"},
      {"a date as its serial", "d.Kalvo_FormatDateTimeFloat(36162.5)", "1/2/1999 12:00:00 PM"},
      {"an operation answers its own object", "x.GetSession() === Session && x.GetRequest() === Request", "True"},
      {"an inherited object", "Object.create(d).TableRowEnd().length", "7"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Value(c.expression), c.value);
    EXPECT_EQ(Failure(), "");
  }
}

TEST_F(Arguments, TakeColumnsAsAnArrayOfNumbers) {
  const auto initialized = [&](const std::string& columns) {
    return Value("(function () { try { t.Initialize(0, 2, 'n', 0, false, false, false, false, " + columns +
                 ", 'sql', 'by', 'ASC'); return t.GetColumns().join() + '/' + t.GetColumns().length; }"
                 "catch (e) { return e.number & 0xFFFF; } })()");
  };
  EXPECT_EQ(initialized("[1, 2, 128]"), "1,2,128/3");
  EXPECT_EQ(initialized("[]"), "/0");
  EXPECT_EQ(initialized("[1.5, '7', true]"), "2,7,-1/3");
  EXPECT_EQ(initialized("[32768]"), "6");
  EXPECT_EQ(initialized("['x']"), "13");
  EXPECT_EQ(initialized("[{}]"), "13");
  EXPECT_EQ(initialized("[null]"), "94");
  EXPECT_EQ(initialized("7"), "13");
  EXPECT_EQ(initialized("{length: 1}"), "13");
  EXPECT_EQ(initialized("undefined"), "13");
}

TEST_F(Arguments, AreStoredUpToAColumnThatIsNone) {
  const auto left = [&](const std::string& columns) {
    return Value(
        "(function () { t.Initialize(0, 2, 'old', 0, false, false, false, false, [7, 8, 9], 'oldsql', 'oldby',"
        "'oldsort'); try { t.Initialize(1, 3, 'new', 0, false, false, false, false, " +
        columns +
        ", 'newsql', 'newby', 'newsort'); return 'none'; } catch (e) { return [e.number & 0xFFFF, t.GetId(),"
        "t.GetDefaultSortOrder(), t.GetColumns().join(), t.GetSQL(), t.GetOrderBy()].join(' '); } })()");
  };
  EXPECT_EQ(left("[1, 2, 32768, 4]"), "6 3 newsort 1,2,0,0 oldsql oldby");
  EXPECT_EQ(left("['x']"), "13 3 newsort 0 oldsql oldby");
  EXPECT_EQ(left("7"), "13 3 newsort 7,8,9 oldsql oldby") << "there is no size to take";
}

TEST_F(Arguments, OfMoreColumnsThanThereIsMemoryForEndThePage) {
  options.limits.mebibytes = 16;
  Value(
      "(function () { var a = []; a.length = 4294967295; t.Initialize(0, 2, '', 0, false, false, false, false, a, '',"
      "'', ''); })()");
  ASSERT_TRUE(result.failure);
  EXPECT_EQ(result.failure->kind, FailureKind::MemoryLimit);
}

TEST_F(Arguments, AnswerNothingForATableOfNoKnownType) {
  EXPECT_EQ(Value("(t.Initialize(9, 2, '', 0, false, false, false, false, [], '', '', ''), t.GetDataSrc(x) === "
                  "undefined)"),
            "True");
}

TEST_F(Arguments, ThatAreNoDateFailWhereTheyAreUsed) {
  for (const char* use : {"d.SimpleRowData(none)", "d.AddInputField('a', none)", "x.SetTopN(none)",
                          "d.Kalvo_FormatNumber(none, true)", "Session.Value('kept', none)"}) {
    EXPECT_EQ(Value(std::string("(function () { var none = new Date(NaN); try { return ") + use +
                    "; } catch (e) { return e.number & 0xFFFF; } })()"),
              "13")
        << use;
  }
}

TEST_F(Arguments, GiveCopiesOfArrays) {
  EXPECT_EQ(Value("(t.Initialize(0, 2, 'n', 0, false, false, false, false, [1, 2], '', '', ''), t.GetColumns()[0] = 9,"
                  "t.GetColumns().join())"),
            "1,2");
}

TEST_F(Arguments, ThatAreChangedComeBackInBoxes) {
  EXPECT_EQ(Value("(box = {value: null}, d.Kalvo_FormatNumber(box, false) + (box.value === 0))"), "0true");
  EXPECT_EQ(Value("(box = {value: 7}, d.Kalvo_FormatNumber(box, true) + (box.value === 7))"), "7.00true");
  EXPECT_EQ(Value("d.Kalvo_FormatNumber(7, false)"), "7");
  EXPECT_EQ(Value("d.Kalvo_FormatNumber(new Number(7), false)"), "7");
}

TEST_F(Arguments, ComeBackInBoxesAlsoFromAnOperationThatFails) {
  session.values["kalvodrilldownauth"] = std::string("Yes");
  EXPECT_EQ(Value("(function () { var g = Server.CreateObject('KalvoTables.KalvoforExchangeTableGenerator');"
                  "box = {value: 'before'}; try { g.DeleteMessage(box); return 'deleted'; }"
                  "catch (e) { return box.value; } })()"),
            "Get the live container object.");
}

TEST_F(Arguments, ReadAndWriteProperties) {
  EXPECT_EQ(Value("(function (s) { s.gRecordCount = '12'; s.gRowIndex = 3; return s.gRecordCount + s.gRowIndex; })"
                  "(new ActiveXObject('KalvoTables.TopnDataSrc'))"),
            "15");
}

// ---- what an operation's type says, on a class made for it ---------------------------------------------------------

class Probe : public Object {
 public:
  bool Flip(bool& flag, std::string& text, Value& value) {
    flag = !flag;
    text += "!";
    value = text;
    if (flag) throw Error(9, "after the change");
    return flag;
  }
  Value Echo(const Value& value) { return value; }
  std::int64_t Large() { return 0; }
};

constexpr Member kProbe[] = {
    Method<&Probe::Flip>("Flip", {{"flag"}, {"text"}, {"value"}}, "Changes all three."),
    Method<&Probe::Echo>("Echo", {{"value"}}, "Answers the value."),
};

class ProbeTest : public testing::Test {
 protected:
  // Runs a member with the arguments that code pushes.
  void Run(const Member& member, const std::string& code) {
    failure = engine.Attempt([&] {
      duk_eval_string(engine.Context(), code.c_str());
      for (std::size_t i = 0; i < member.parameterCount; ++i) {
        duk_get_prop_index(engine.Context(), 0, static_cast<duk_uarridx_t>(i));
      }
      duk_remove(engine.Context(), 0);
      CallFrame frame{engine, *probe, member.Parameters(), member.parameterCount};
      member.call(frame);
    });
  }

  Wrappers wrappers{Classes()};
  Engine engine{PageLimits{}, &wrappers};
  std::shared_ptr<Probe> probe = std::make_shared<Probe>();
  std::optional<ScriptFailure> failure;
};

TEST_F(ProbeTest, WritesEveryBoxAlsoWhenTheOperationThrows) {
  Run(kProbe[0], "boxes = [{value: 0}, {value: 5}, {value: 'x'}]");
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->number, 9);
  EXPECT_EQ(failure->description, "after the change");
  const auto same = engine.Attempt([&] {
    duk_eval_string(engine.Context(), "boxes[0].value === true && boxes[1].value === '5!' && boxes[2].value === '5!'");
    EXPECT_TRUE(duk_get_boolean(engine.Context(), -1));
  });
  EXPECT_FALSE(same);
}

TEST_F(ProbeTest, TurnsThrownErrorsIntoNumbersAndBack) {
  const struct {
    const char* why;
    const char* thrown;
    std::int32_t number;
    const char* description;
  } kCases[] = {
      {"one of ours", "var e = new Error('m'); e.number = 0x800A0009 | 0; e.description = 'd'; throw e;", 9, "d"},
      {"a component's", "var e = new Error('m'); e.number = -2147467259; throw e;", codes::kFailed, "m"},
      {"unsigned", "var e = new Error('m'); e.number = 0x80040E14; throw e;", codes::kSqlSyntax, "m"},
      {"none", "throw new Error('m');", codes::kFailed, "m"},
      {"an empty description", "var e = new Error('m'); e.description = ''; throw e;", codes::kFailed, ""},
      {"a number that is none", "var e = new Error('m'); e.number = 'x'; throw e;", codes::kFailed, "m"},
      {"a text", "throw 'm';", codes::kFailed, "m"},
      {"a plain object", "throw {number: 5, description: 'd'};", 5, "d"},
      {"none of ours", "throw {number: 0x800A0005, description: 'd'};", static_cast<std::int32_t>(0x800A0005), "d"},
      {"0 would be no error", "throw {number: 0, description: 'd'};", codes::kFailed, "d"},
      {"0 in 32 bits", "throw {number: 4294967296, description: 'd'};", codes::kFailed, "d"},
      {"less than 1", "throw {number: 0.5, description: 'd'};", codes::kFailed, "d"},
      {"a little less than 0", "throw {number: -0.5, description: 'd'};", codes::kFailed, "d"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const auto thrown = engine.Attempt([&] { duk_eval_string(engine.Context(), c.thrown); });
    ASSERT_TRUE(thrown);
    EXPECT_EQ(thrown->number, c.number);
    EXPECT_EQ(thrown->description, c.description);
  }
}

TEST_F(ProbeTest, ConvertsValuesBothWays) {
  const struct {
    const char* why;
    Value value;
    const char* isSame;
  } kCases[] = {
      {"empty", Empty{}, "v === undefined"},
      {"null", Null{}, "v === null"},
      {"true", true, "v === true"},
      {"an integer", 7, "v === 7"},
      {"an integer of 64 bits", std::int64_t{1} << 40, "v === 1099511627776"},
      {"a fraction", 0.5, "v === 0.5"},
      {"text", std::string("\U0001F600"), "v === '\\uD83D\\uDE00' && v.length === 2"},
      {"a date", Date{36162.627835648148}, "v.getTime() === new Date(1999, 0, 2, 15, 4, 5).getTime()"},
      {"a date of summer", Date{36342.5}, "v.getTime() === new Date(1999, 6, 1, 12).getTime()"},
      {"a date before day 0", Date{-1.25}, "v.getTime() === new Date(1899, 11, 29, 6).getTime()"},
      {"bytes", Bytes{'a', 0xFF}, "v === 'a\\uFFFD'"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const auto thrown = engine.Attempt([&] {
      PushValue(engine, c.value);
      duk_put_global_string(engine.Context(), "v");
      duk_eval_string(engine.Context(), c.isSame);
      EXPECT_TRUE(duk_get_boolean(engine.Context(), -1));
      duk_get_global_string(engine.Context(), "v");
      const Value back = ValueAt(engine, -1);
      if (std::holds_alternative<Date>(c.value)) {
        EXPECT_NEAR(std::get<Date>(back).serial, std::get<Date>(c.value).serial, 1e-8);
      } else if (c.value.index() != 4 && c.value.index() != 8) {  // large integers and bytes have no script type
        EXPECT_EQ(back, c.value);
      }
    });
    EXPECT_FALSE(thrown) << thrown->message;
  }
}

TEST_F(ProbeTest, RefusesWhatNoOperationTakes) {
  const auto thrown = engine.Attempt([&] {
    duk_eval_string(engine.Context(), "Symbol('x')");
    ValueAt(engine, -1);
  });
  ASSERT_TRUE(thrown);
  EXPECT_EQ(thrown->number, 13);
}

TEST_F(ProbeTest, HandsADateThatIsNoneThrough) {
  const auto thrown = engine.Attempt([&] {
    duk_eval_string(engine.Context(), "new Date(NaN)");
    const Value none = ValueAt(engine, -1);
    ASSERT_TRUE(std::holds_alternative<Date>(none));
    PushValue(engine, none);
    duk_put_global_string(engine.Context(), "back");
    duk_eval_string(engine.Context(), "back instanceof Date && isNaN(back.getTime())");
    EXPECT_TRUE(duk_get_boolean(engine.Context(), -1));
  });
  EXPECT_FALSE(thrown);
}

TEST_F(ProbeTest, KeepsOneScriptObjectForAnObjectWhileItLives) {
  auto constants = std::make_shared<TableConstants>();
  const std::weak_ptr<Object> watched = constants;
  const auto thrown = engine.Attempt([&] {
    PushObject(engine, constants);
    PushObject(engine, constants);
    EXPECT_TRUE(duk_strict_equals(engine.Context(), -1, -2));
    EXPECT_EQ(NativeAt(engine.Context(), -1), constants);
    constants.reset();
    duk_pop_2(engine.Context());
  });
  EXPECT_FALSE(thrown);
  EXPECT_TRUE(watched.expired());
  EXPECT_EQ(wrappers.Count(), 0U);
}

TEST_F(ProbeTest, GivesAScriptObjectBackAsItself) {
  std::shared_ptr<Object> kept;
  const auto thrown = engine.Attempt([&] {
    duk_push_object(engine.Context());
    kept = std::get<std::shared_ptr<Object>>(ValueAt(engine, -1));
    PushValue(engine, kept);
    EXPECT_TRUE(duk_strict_equals(engine.Context(), -1, -2));
  });
  EXPECT_FALSE(thrown);
}

TEST(ScriptReferences, OutliveTheirEngineHarmlessly) {
  std::unique_ptr<ScriptReference> reference;
  {
    Wrappers wrappers(Classes());
    Engine engine(PageLimits{}, &wrappers);
    const auto thrown = engine.Attempt([&] {
      duk_push_object(engine.Context());
      reference = std::make_unique<ScriptReference>(engine, -1);
    });
    EXPECT_FALSE(thrown);
  }
  EXPECT_THROW(reference->Home(), Error);
}

}  // namespace
}  // namespace kalvo::test
