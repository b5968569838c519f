#include "host/edge/edge.h"

#include <gtest/gtest.h>

#include "fakes/page_fixture.h"
#include "host/script/page/page_directive.h"
#include "host/script/page/request.h"

namespace kalvo::test {
namespace {

using namespace edge;

class EdgeTest : public testing::Test {
 protected:
  // What the edge leaves of a query, or the reason why it refuses it.
  std::string Query(const std::string& query) {
    request_.queryString = query;
    verdict_ = edge_.Apply(request_, page_);
    return verdict_.refusal.value_or(request_.queryString);
  }

  std::string Variable(std::string_view name) const {
    std::string values;
    for (const auto& [key, value] : request_.serverVariables) {
      if (key == name) values += '[' + value + ']';
    }
    return values;
  }

  FakeDatabase database_;
  FakeRanking ranking_;
  FakeClock clock_;
  Platform platform_{database_, ranking_, clock_};
  Edge edge_{platform_};
  host::PageDirective page_;
  host::PageRequest request_;
  Verdict verdict_;
};

TEST_F(EdgeTest, LeavesWhatFitsByteForByte) {
  for (const char* query : {"", "Server=SEA-EX01&Mailbox=al%69ce&Sort=&Sort=Name&&x", "a=%22%3E&bc&a=%zz",
                            "Server=a+b%C3%A9&First=1&PageSize=20"}) {
    EXPECT_EQ(Query(query), query);
    EXPECT_EQ(Variable("KALVO_EDGE"), "[]");
    EXPECT_TRUE(verdict_.takenAway.empty());
    request_ = {};
  }
}

TEST_F(EdgeTest, EmptiesAValueWhereItStands) {
  EXPECT_EQ(Query("x=1&Sort=Name&s%4Frt=%3Cb%3E&Sort=8&First=70000&First=x"),
            "x=1&Sort=Name&s%4Frt=&Sort=8&First=&First=");
  EXPECT_EQ(Variable("KALVO_EDGE"), "[First, Sort]");
  ASSERT_EQ(verdict_.takenAway.size(), 2U) << "a number that is only too large is nobody's attack";
  EXPECT_EQ(verdict_.takenAway[0].where, "query");
  EXPECT_EQ(verdict_.takenAway[0].parameter, "Sort");
  EXPECT_EQ(verdict_.takenAway[0].value, "<b>");
  EXPECT_EQ(verdict_.takenAway[1].parameter, "First");
}

TEST_F(EdgeTest, TakesIdentifiersFromTheQueryOnly) {
  request_.form = "ContainerId=abc&Server=S1&messageid=x&Server=%22";
  request_.cookies = "a=1; ContainerId=abc;FolderId=y; Mailbox=m%3C";
  EXPECT_EQ(Query("ContainerId=abc"), "ContainerId=abc");
  EXPECT_EQ(request_.form, "ContainerId=&Server=S1&messageid=&Server=");
  EXPECT_EQ(request_.cookies, "a=1; ContainerId=;FolderId=; Mailbox=");
  EXPECT_EQ(Variable("KALVO_EDGE"), "[ContainerId, MessageId, Server]") << "cookies may be somebody else's";
  EXPECT_EQ(verdict_.takenAway.size(), 6U);
}

TEST_F(EdgeTest, RefusesWhatNoPageIsToSee) {
  const std::string names = "The name of a parameter has 1 to 40 letters, digits, \"_\" and \".\".";
  const auto placeholder = [](const std::string& name) {
    return "The value of " + name + " holds a placeholder of the reports, such as %NAME%.";
  };
  EXPECT_EQ(Query("a%20b=1"), names);
  EXPECT_EQ(Query("=1"), names);
  EXPECT_EQ(Query("a=%3Cb%3E&%3Cb%3E"), names);
  EXPECT_EQ(Query("Organization=%25SITE%25&Site=x"), placeholder("Organization"));
  EXPECT_EQ(Query("Beginning=x%25SITE"), placeholder("Beginning"));
  EXPECT_EQ(Query(std::string(8193, 'a')), "The query of an address has at most 8192 bytes.");
  request_.form = "any name=1&b=%25NAME%25";
  EXPECT_EQ(Query("a=1"), placeholder("b"));
  EXPECT_EQ(Variable("KALVO_EDGE"), "") << "no page runs";
  request_.form = "NewPassword=%25NAME%25";
  EXPECT_EQ(Query("a=1"), "a=1") << "a password is nobody's business";
  EXPECT_EQ(request_.form, "NewPassword=%25NAME%25");
  EXPECT_TRUE(verdict_.takenAway.empty());
  request_.form.clear();
  request_.cookies = "b=%25NAME%25";
  EXPECT_EQ(Query("a=1"), "a=1") << "a neighbour's cookie locks nobody out";
  EXPECT_EQ(request_.cookies, "b=");
}

TEST_F(EdgeTest, KnowsAParameterByWhateverCaseThePageWould) {
  const std::string name = "Conta\u0130ner\u0130d";  // whose small letters are ASCII
  request_.form = request_.cookies = name + "=%22x";
  Query("");
  EXPECT_EQ(host::RequestObject(request_).Item("ContainerId"), "");
  EXPECT_EQ(request_.form, name + "=");
}

TEST_F(EdgeTest, CutsWhatTheLogIsTold) {
  Query("Sort=" + std::string(1000, '<'));
  EXPECT_EQ(verdict_.takenAway.at(0).value, std::string(200, '<'));
}

TEST_F(EdgeTest, GoesByWhatThePageDeclares) {
  EXPECT_EQ(Query("Sort=Owner&MessageId=a%3Db"), "Sort=&MessageId=");
  page_.sortWords = {"Owner"};
  page_.ownIdentifiers = true;
  EXPECT_EQ(Query("Sort=Owner&MessageId=a%3Db"), "Sort=Owner&MessageId=a%3Db");
}

TEST_F(EdgeTest, HidesTracesAndSaysSo) {
  EXPECT_EQ(Query("Debug=SQL&First=70000&debug=Table&Debug="), "Debug=SQL&First=&debug=Table&Debug=");
  const Verdict hidden = HideDebug(request_);
  EXPECT_EQ(request_.queryString, "Debug=&First=&debug=&Debug=");
  EXPECT_EQ(Variable("KALVO_EDGE"), "[First, Debug]");
  ASSERT_EQ(hidden.takenAway.size(), 2U);
  EXPECT_EQ(hidden.takenAway[1].value, "Table");
}

}  // namespace
}  // namespace kalvo::test
