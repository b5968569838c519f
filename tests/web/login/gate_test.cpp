#include "host/web/login/gate.h"

#include <gtest/gtest.h>

#include "web/login/gate_fixture.h"

namespace kalvo::test {
namespace {

TEST_F(Gates, LetNobodyPassWithoutASignIn) {
  for (const std::string& cookie : {std::string(), std::string("KalvoSession="), "KalvoSession=" + NewToken(),
                                    std::string("KalvoSession=../users"), "KalvoSession=" + std::string(50'000, 'a'),
                                    std::string("KalvoSession=\xFF\x01"), std::string("KalvoAdministrator=Yes")}) {
    EXPECT_EQ(Sent("/Tasks/TopN.asp", cookie),
              "/KalvoforExchange/SignIn.asp?Return=%2FKalvoforExchange%2FTasks%2FTopN%2Easp");
    EXPECT_NE(Sent("/Configuration/Process.asp", cookie, "POST"), "");
    EXPECT_EQ(Sent("/Default.asp", cookie), "/KalvoforExchange/SignIn.asp");
    EXPECT_NE(Sent("/signin.ASP", cookie), "");
    EXPECT_NE(Sent("/Tasks/SignIn.asp", cookie), "");
  }
}

TEST_F(Gates, ShowTheSignInPageToEverybody) {
  host::PageRequest request = Asked("/SignIn.asp");
  const Decision decision = gate_.Admit("/SignIn.asp", request);
  const auto& admission = std::get<Admission>(decision);
  EXPECT_EQ(admission.logon, "");
  EXPECT_EQ(Variable(admission, "KALVO_SIGN_IN"), "");
}

TEST_F(Gates, SignInWithNameAndPassword) {
  const Decision decision = SignIn("bob", "correct+horse");
  EXPECT_EQ(std::get<Answer>(decision).head.status, 303);
  EXPECT_EQ(HeaderOf(decision, "Location"), "/KalvoforExchange/");
  const std::string cookie = HeaderOf(decision, "Set-Cookie");
  EXPECT_TRUE(cookie.ends_with("; Path=/KalvoforExchange/; HttpOnly; SameSite=Strict")) << cookie;

  host::PageRequest request = Asked("/Tasks/TopN.asp", CookieOf(decision));
  Decision page = gate_.Admit("/Tasks/TopN.asp", request);
  ASSERT_TRUE(std::holds_alternative<Admission>(page));
  const auto& admission = std::get<Admission>(page);
  EXPECT_EQ(admission.logon, "KALVO\\bob");
  EXPECT_EQ(admission.session->Get("KalvoAdministrator"), Value());
  EXPECT_EQ(admission.session->Get("KalvoDrillDownAuth"), Value(std::string("Yes")));
}

TEST_F(Gates, RefuseEveryOtherNameAndPassword) {
  const struct {
    const char *name, *password;
  } kCases[] = {{"bob", "correct+hors"},
                {"bob", ""},
                {"carol", "correct+horse"},
                {"", ""},
                {"COTE%5Cbob", "correct+horse"},
                {"bob%0A", "correct+horse"},
                {"KALVO%5Cbob%00", "correct+horse"}};
  for (const auto& c : kCases) {
    const Decision decision = SignIn(c.name, c.password);
    ASSERT_TRUE(std::holds_alternative<Admission>(decision)) << c.name;
    EXPECT_EQ(Variable(std::get<Admission>(decision), "KALVO_SIGN_IN"), "wrong") << c.name;
    EXPECT_EQ(std::get<Admission>(decision).logon, "");
  }
}

TEST_F(Gates, DoNotHandThePasswordToThePage) {
  host::PageRequest request = Asked("/SignIn.asp");
  request.method = "POST";
  request.form = "Name=bob&Password=nearly+right&Return=%2FKalvoforExchange%2FTasks%2FTopN.asp";
  gate_.Admit("/SignIn.asp", request);
  EXPECT_EQ(request.form, "");
  EXPECT_EQ(request.queryString, "Return=%2FKalvoforExchange%2FTasks%2FTopN%2Easp");
  EXPECT_EQ(ReadFile(folder_.Path() / "log").find("nearly"), std::string::npos);
}

TEST_F(Gates, ReadNoMoreThanASignInNeeds) {
  const std::string filling(kLargestSignIn - std::string("Name=bob&Password=correct+horse&").size(), 'x');
  EXPECT_EQ(std::get<Answer>(SignIn("bob", "correct+horse", "&" + filling)).head.status, 303);
  EXPECT_EQ(std::get<Answer>(SignIn("bob", "correct+horse", "&x" + filling)).head.status, 413);
}

TEST_F(Gates, SlowWhoGuesses) {
  for (int i = 0; i < 8; ++i) SignIn("bob", "wrong");
  const Decision decision = SignIn("bob", "correct+horse");
  ASSERT_TRUE(std::holds_alternative<Admission>(decision)) << "not even the right one is heard";
  EXPECT_TRUE(Variable(std::get<Admission>(decision), "KALVO_SIGN_IN").starts_with("wait "));
}

TEST_F(Gates, SendBackToThisConsoleOnly) {
  EXPECT_EQ(
      HeaderOf(SignIn("bob", "correct+horse", "&Return=%2FKalvoforExchange%2FTasks%2FTopN.asp%3FSort%3D8"), "Location"),
      "/KalvoforExchange/Tasks/TopN.asp?Sort=8");
  for (const char* elsewhere :
       {"http%3A%2F%2Fexample.org%2F", "%2F%2Fexample.org", "%2F%5Cexample.org", "javascript%3A1",
        "%2FKalvoforExchange%2F%0D%0ASet-Cookie%3Ax", "%2FKalvoforExchange%2F..%2Fx"}) {
    EXPECT_EQ(HeaderOf(SignIn("bob", "correct+horse", std::string("&Return=") + elsewhere), "Location"),
              "/KalvoforExchange/")
        << elsewhere;
  }
}

TEST_F(Gates, KnowABrowserForFourWeeks) {
  const Decision decision = SignIn("bob", "correct+horse");
  const std::string device = std::get<Answer>(decision).head.headers.back().second;
  EXPECT_TRUE(device.starts_with("KalvoDevice=")) << device;
  EXPECT_TRUE(device.ends_with("; Max-Age=2419200")) << device;
}

TEST_F(Gates, LetNobodyInWhoseSessionCannotBeKept) {
  std::filesystem::remove_all(folder_.Path() / "sessions");
  WriteFile(folder_.Path() / "sessions", "no folder");
  EXPECT_EQ(Variable(std::get<Admission>(SignIn("bob", "correct+horse")), "KALVO_SIGN_IN"), "full");
  EXPECT_NE(ReadFile(folder_.Path() / "log").find("nobody can sign in: "), std::string::npos);
}

TEST_F(Gates, BeginANewSessionAtEachSignIn) {
  const std::string first = CookieOfBob();
  const std::string second = CookieOf(SignIn("bob", "correct+horse", "", first));
  EXPECT_NE(first, second);
  EXPECT_NE(Sent("/Tasks/TopN.asp", first), "") << "the one before is over";
  EXPECT_EQ(Sent("/Tasks/TopN.asp", second), "");
}

TEST_F(Gates, DoNotTakeOverASessionThatTheBrowserMadeUp) {
  const std::string planted = "KalvoSession=" + NewToken();
  const std::string cookie = CookieOf(SignIn("bob", "correct+horse", "", planted));
  EXPECT_NE(cookie, planted);
  EXPECT_NE(Sent("/Tasks/TopN.asp", planted), "");
}

TEST_F(Gates, RefuseAFormFromAnotherSite) {
  for (const auto& [name, value] : {std::pair{"HTTP_ORIGIN", "http://example.org"}, std::pair{"HTTP_ORIGIN", "null"},
                                    std::pair{"HTTP_SEC_FETCH_SITE", "cross-site"}}) {
    host::PageRequest request = Asked("/SignIn.asp");
    request.method = "POST";
    request.form = "Name=bob&Password=correct+horse";
    request.serverVariables.emplace_back(name, value);
    const Decision decision = gate_.Admit("/SignIn.asp", request);
    ASSERT_TRUE(std::holds_alternative<Answer>(decision));
    EXPECT_EQ(std::get<Answer>(decision).head.status, 403);
  }
  host::PageRequest request = Asked("/SignIn.asp");
  request.method = "POST";
  request.form = "Name=bob&Password=correct+horse";
  request.serverVariables.emplace_back("HTTP_ORIGIN", "http://console:8080");
  request.serverVariables.emplace_back("HTTP_SEC_FETCH_SITE", "same-origin");
  EXPECT_EQ(std::get<Answer>(gate_.Admit("/SignIn.asp", request)).head.status, 303);
}

TEST_F(Gates, SignOut) {
  const std::string cookie = CookieOfBob();
  EXPECT_EQ(Sent("/SignOut.asp", cookie), "/KalvoforExchange/") << "a link signs nobody out";
  EXPECT_EQ(Sent("/Tasks/TopN.asp", cookie), "");
  host::PageRequest request = Asked("/SignOut.asp", cookie);
  request.method = "POST";
  EXPECT_EQ(std::get<Answer>(gate_.Admit("/SignOut.asp", request)).head.status, 403)
      << "nothing says where it came from";
  EXPECT_EQ(Sent("/Tasks/TopN.asp", cookie), "");
  request = Asked("/SignOut.asp", cookie);
  request.method = "POST";
  request.serverVariables.emplace_back("HTTP_ORIGIN", "http://console:8080");
  const Decision decision = gate_.Admit("/SignOut.asp", request);
  EXPECT_EQ(HeaderOf(decision, "Location"), "/KalvoforExchange/SignIn.asp");
  EXPECT_NE(HeaderOf(decision, "Set-Cookie")
                .find("KalvoSession=; Path=/KalvoforExchange/; HttpOnly; SameSite=Strict; Max-Age=0"),
            std::string::npos);
  EXPECT_NE(Sent("/Tasks/TopN.asp", cookie), "");
}

TEST_F(Gates, EndTheSessionOfWhomTheUsersFileNoLongerKnowsSo) {
  const std::string cookie = CookieOfBob();
  EXPECT_EQ(Sent("/Tasks/TopN.asp", cookie), "");
  users_.Put({"KALVO\\bob", true, true, hash_});
  EXPECT_NE(Sent("/Tasks/TopN.asp", cookie), "") << "rights changed";
  users_.Put({"KALVO\\bob", false, true, hash_});
  EXPECT_NE(Sent("/Tasks/TopN.asp", cookie), "") << "and changed back: the session is over all the same";
  const std::string again = CookieOfBob();
  users_.Remove("KALVO\\bob");
  EXPECT_NE(Sent("/Tasks/TopN.asp", again), "") << "no user any more";
}

TEST_F(Gates, WriteDownWhoComesAndGoes) {
  const std::string cookie = CookieOfBob();
  SignIn("mallory", "guess");
  host::PageRequest request = Asked("/SignOut.asp", cookie);
  request.method = "POST";
  request.serverVariables.emplace_back("HTTP_SEC_FETCH_SITE", "same-origin");
  gate_.Admit("/SignOut.asp", request);
  const auto records = audit::Newest(folder_.Path() / "audit", {}, 10);
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[1].event, audit::Event::SignedIn);
  EXPECT_EQ(records[1].visitor.user, "KALVO\\bob");
  EXPECT_EQ(records[1].visitor.address, "10.0.0.1");
  EXPECT_EQ(records[0].event, audit::Event::SignedOut);
  ASSERT_EQ(told_.size(), 3u);
  EXPECT_EQ(told_[1], "security: sign-in-refused from 10.0.0.1 name=\"KALVO\\mallory\"");
}

TEST_F(Gates, KeepTheCookieFromPages) {
  const std::string cookie = CookieOfBob();
  host::PageRequest request = Asked("/Tasks/TopN.asp", "a=1; " + cookie + "; b=2");
  ASSERT_TRUE(std::holds_alternative<Admission>(gate_.Admit("/Tasks/TopN.asp", request)));
  EXPECT_EQ(request.cookies, "a=1; b=2");
  for (const auto& [name, value] : request.serverVariables) EXPECT_EQ(value.find(cookie), std::string::npos) << name;
}

TEST_F(Gates, FindTheSessionBehindANeighboursCookie) {
  const std::string cookie = CookieOfBob(), foreign = "KalvoSession=" + NewToken();
  EXPECT_EQ(Sent("/Tasks/TopN.asp", foreign + "; " + cookie), "");
  EXPECT_EQ(Sent("/Tasks/TopN.asp", cookie + "; " + foreign), "");
  host::PageRequest request = Asked("/SignOut.asp", foreign + "; " + cookie);
  request.method = "POST";
  request.serverVariables.emplace_back("HTTP_SEC_FETCH_SITE", "same-origin");
  gate_.Admit("/SignOut.asp", request);
  EXPECT_NE(Sent("/Tasks/TopN.asp", cookie), "") << "who signs out is out, whatever stands before";
}

TEST_F(Gates, LookAtFewCookies) {
  std::string cookies;
  for (int i = 0; i < 8; ++i) cookies += "KalvoSession=" + NewToken() + "; ";
  EXPECT_NE(Sent("/Tasks/TopN.asp", cookies + CookieOfBob()), "");
}

TEST_F(Gates, AreNotMadeForAUsersFileThatOthersWrite) {
  chmod((folder_.Path() / "users").c_str(), 0666);
  EXPECT_THROW(Gate({folder_.Path() / "users", folder_.Path() / "other", {}, {}}, nobody_, log_, trail_),
               host::SettingError);
}

TEST_F(Gates, WarnOfAUsersFileThatEverybodyReads) {
  chmod((folder_.Path() / "users").c_str(), 0644);
  const Gate gate({folder_.Path() / "users", folder_.Path() / "other", {}, {}}, nobody_, log_, trail_);
  EXPECT_NE(ReadFile(folder_.Path() / "log").find("may be read by everybody"), std::string::npos);
}

TEST_F(Gates, BindTheCookieToTheHostBehindEncryption) {
  const auto encrypted = [](host::PageRequest request) {
    request.serverVariables.emplace_back("HTTPS", "on");
    return request;
  };
  host::PageRequest request = encrypted(Asked("/SignIn.asp"));
  request.method = "POST";
  request.form = "Name=bob&Password=correct+horse";
  const Decision decision = gate_.Admit("/SignIn.asp", request);
  const std::string header = HeaderOf(decision, "Set-Cookie");
  EXPECT_TRUE(header.starts_with("__Host-KalvoSession="));
  EXPECT_TRUE(header.ends_with("; Path=/; HttpOnly; SameSite=Strict; Secure")) << header;

  const std::string cookie = CookieOf(decision), planted = cookie.substr(cookie.find("Kalvo"));
  request = encrypted(Asked("/Tasks/TopN.asp", "a=1; " + cookie));
  EXPECT_TRUE(std::holds_alternative<Admission>(gate_.Admit("/Tasks/TopN.asp", request)));
  EXPECT_EQ(request.cookies, "a=1");
  request = encrypted(Asked("/Tasks/TopN.asp", planted));
  EXPECT_TRUE(std::holds_alternative<Answer>(gate_.Admit("/Tasks/TopN.asp", request)))
      << "anybody can set the plain one";
  EXPECT_EQ(request.cookies, "");
}

class OwnPasswords : public Gates {
 protected:
  Decision Change(const std::string& cookie, const std::string& form,
                  const std::string& origin = "http://console:8080") {
    host::PageRequest request = Asked("/Configuration/Password.asp", cookie);
    request.method = "POST";
    request.form = form;
    request.serverVariables.emplace_back("HTTP_ORIGIN", origin);
    Decision decision = gate_.Admit("/Configuration/Password.asp", request);
    EXPECT_EQ(std::holds_alternative<Admission>(decision) ? request.form : "", "") << "the page sees no password";
    return decision;
  }
};

TEST_F(OwnPasswords, ChangeByTheOldOneAndEndEveryOtherSession) {
  const std::string cookie = CookieOfBob(), elsewhere = CookieOfBob();
  const Decision decision =
      Change(cookie, "OldPassword=correct+horse&NewPassword=battery+staple&RepeatedPassword=battery+staple");
  ASSERT_TRUE(std::holds_alternative<Answer>(decision));
  EXPECT_EQ(std::get<Answer>(decision).head.status, 303);
  EXPECT_EQ(HeaderOf(decision, "Location"), "/KalvoforExchange/Configuration/Password.asp");
  const std::string fresh = CookieOf(decision);
  EXPECT_NE(fresh, cookie);
  EXPECT_NE(Sent("/Tasks/TopN.asp", cookie), "");
  EXPECT_NE(Sent("/Tasks/TopN.asp", elsewhere), "");
  host::PageRequest request = Asked("/Configuration/Password.asp", fresh);
  Decision page = gate_.Admit("/Configuration/Password.asp", request);
  ASSERT_TRUE(std::holds_alternative<Admission>(page));
  EXPECT_EQ(std::get<Admission>(page).session->Get("KalvoPasswordChanged"), Value(std::string("Yes")));
  EXPECT_TRUE(std::holds_alternative<Admission>(SignIn("bob", "correct+horse")))
      << "the old one is no password any more";
  EXPECT_TRUE(std::holds_alternative<Answer>(SignIn("bob", "battery+staple")));
}

TEST_F(OwnPasswords, TellThePageWhyTheyDidNotChange) {
  const std::string cookie = CookieOfBob();
  const Decision decision =
      Change(cookie, "OldPassword=wrong&NewPassword=battery+staple&RepeatedPassword=battery+staple");
  ASSERT_TRUE(std::holds_alternative<Admission>(decision));
  EXPECT_EQ(Variable(std::get<Admission>(decision), "KALVO_PASSWORD"), "wrong");
  EXPECT_EQ(std::get<Admission>(decision).logon, "KALVO\\bob");
}

TEST_F(OwnPasswords, DoNotChangeForAnotherSiteOrWithoutASession) {
  const std::string cookie = CookieOfBob(),
                    form = "OldPassword=correct+horse&NewPassword=battery+staple&RepeatedPassword=battery+staple";
  EXPECT_EQ(std::get<Answer>(Change(cookie, form, "http://example.org")).head.status, 403);
  EXPECT_EQ(std::get<Answer>(Change(cookie, form + std::string(8200, 'x'))).head.status, 413);
  EXPECT_EQ(std::get<Answer>(Change("", form)).head.status, 302);
  EXPECT_EQ(Sent("/Tasks/TopN.asp", cookie), "") << "and the session goes on";
}

}  // namespace
}  // namespace kalvo::test
