#include "kalvo/platform/locale.h"

#include "script/page_runner.h"

namespace kalvo::test {
namespace {

using namespace host;

class GermanPages : public PageTest {
 protected:
  // What an expression gives, with a display `d`, a context `x` and a moment `when` at hand.
  std::string Value(const std::string& expression) {
    Put("page.asp",
        "<% var d = Server.CreateObject('KalvoTables.Display'), x = Server.CreateObject('KalvoTables.Context'),"
        "when = new Date(1999, 0, 2, 15, 4, 5); Response.Write(" +
            expression + "); %>");
    sink = KeepingSink();
    result = germanSite.Run("page.asp", request, session, sink, options);
    EXPECT_EQ(Failure(), "");
    return sink.body;
  }

  Platform german{database, ranking, clock, *FindLocale("de-DE")};
  Site germanSite{folder.Path(), german};
};

TEST_F(GermanPages, WriteTheDatesOfScriptInTheirOwnForm) {
  const struct {
    const char* why;
    const char* expression;
    const char* value;
  } kCases[] = {
      {"a cell", "d.SimpleRowData(when)", "<td>02.01.1999 15:04:05</td>"},
      {"a day alone", "d.SimpleRowData(new Date(1999, 11, 31))", "<td>31.12.1999</td>"},
      {"a value of any type", "d.AddInputField('v', when)", " v=\"02.01.1999 15:04:05\""},
      {"a span", "d.MultipleRowData('a', false, when, when, '', '', false, '')",
       "<td rowspan=\"02.01.1999 15:04:05\" colspan=\"02.01.1999 15:04:05\">a</td>"},
      {"a link", "d.AnchorStart(when)", "<a href=\"02.01.1999 15:04:05\">"},
      {"a parameter of a URL", "d.AddParamToURL('u', 'd', when)", "u?d=02%2E01%2E1999+15%3A04%3A05"},
      {"the path of an image", "d.GraphicInput([when, 1, 2], '')",
       "<img border=\"0\" src=\"02.01.1999 15:04:05\" width=\"1\" height=\"2\">"},
      {"the scope", "(x.SetName(when), x.GetName())", "02.01.1999 15:04:05"},
      {"an encoder", "x.ServerHTMLEncode(when)", "02.01.1999 15:04:05"},
      {"a session's value", "(Session.Value('w', when), d.SimpleRowData(Session.Value('w')))",
       "<td>02.01.1999 15:04:05</td>"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Value(c.expression), c.value);
  }
}

TEST_F(GermanPages, ShowADateOfARowSourceAsTheDayItIs) {
  const struct {
    const char* why;
    const char* format;
    const char* cell;
  } kCases[] = {
      {"date and time", "FORMATTYPE_DATETIME", "<td>02.01.1999 15:04:05</td>"},
      {"floating", "FORMATTYPE_DATETIMEFLOAT", "<td>02.01.1999 15:04:05</td>"},
      {"no format", "FORMATTYPE_NOFORMATING", "<td>02.01.1999 15:04:05</td>"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Value(std::string("(function () { var c = new ActiveXObject('KalvoTables.KalvoColumn');"
                                "c.Initialize(10, 'c', 'F', HYPERLINK_NONE, '', '', column_NoTotal, false, ") +
                    c.format +
                    ", 1, '', 1, 1, '', false, ''); return c.ConstructHTMLData(x, d, {GetField: function () {"
                    "return when; }}); })()"),
              c.cell);
  }
}

}  // namespace
}  // namespace kalvo::test
