// A gate behind a proxy that names the user.
#include <gtest/gtest.h>

#include "web/login/gate_fixture.h"

namespace kalvo::test {
namespace {

class Proxied : public Gates {
 protected:
  Decision By(const std::string& named, const std::string& page = "/Tasks/TopN.asp", const std::string& cookie = "") {
    host::PageRequest request = Asked(page, cookie);
    request.serverVariables.emplace_back("KALVO_PROXY_USER", named);
    Decision decision = gate_.Admit(page, request);
    for (const auto& [name, value] : request.serverVariables) EXPECT_NE(name, "KALVO_PROXY_USER");
    return decision;
  }
};

TEST_F(Proxied, UsersAreWhomTheProxyNamesWithTheirRights) {
  users_.Put({"KALVO\\carol", false, true, "-"});
  for (const char* named : {"carol", "KALVO\\carol", "CAROL"}) {
    const Decision decision = By(named);
    ASSERT_TRUE(std::holds_alternative<Admission>(decision)) << named;
    const auto& admission = std::get<Admission>(decision);
    EXPECT_EQ(admission.logon, "KALVO\\carol");
    EXPECT_EQ(Variable(admission, "AUTH_TYPE"), "Proxy");
    EXPECT_EQ(admission.session->Get("KalvoDrillDownAuth"), Value(std::string("Yes")));
    EXPECT_EQ(admission.session->Get("KalvoAdministrator"), Value());
  }
}

TEST_F(Proxied, UsersKeepTheirSessionUntilTheirRightsChange) {
  std::get<Admission>(By("bob")).session->Set("Visits", std::int32_t{1});
  EXPECT_EQ(std::get<Admission>(By("bob")).session->Get("Visits"), Value(std::int32_t{1}));
  EXPECT_EQ(std::get<Admission>(By("alice")).session->Get("Visits"), Value()) << "it is nobody else's";
  users_.Put({"KALVO\\bob", true, false, hash_});
  const Decision decision = By("bob");
  EXPECT_EQ(std::get<Admission>(decision).session->Get("Visits"), Value());
  EXPECT_EQ(std::get<Admission>(decision).session->Get("KalvoAdministrator"), Value(std::string("Yes")));
}

TEST_F(Proxied, StrangersAreRefused) {
  for (const std::string& named : {std::string("mallory"), std::string("bob, alice"), std::string("bob\n"),
                                   std::string("-"), std::string("' or 1"), std::string(70'000, 'a')}) {
    const Decision decision = By(named);
    ASSERT_TRUE(std::holds_alternative<Answer>(decision)) << named.substr(0, 20);
    EXPECT_EQ(std::get<Answer>(decision).head.status, 403);
  }
  EXPECT_LT(ReadFile(folder_.Path() / "log").size(), 4000u) << "a line of the log has an end";
}

TEST_F(Proxied, UsersWaitWhileNoSessionCanBeKept) {
  const FullDisk full(0);
  const Decision decision = By("bob");
  ASSERT_TRUE(std::holds_alternative<Answer>(decision));
  EXPECT_EQ(std::get<Answer>(decision).head.status, 503);
}

TEST_F(Proxied, UsersNeitherSignInNorOut) {
  for (const char* page : {"/SignIn.asp", "/SignOut.asp"}) {
    EXPECT_EQ(HeaderOf(By("bob", page), "Location"), "/KalvoforExchange/") << page;
  }
}

TEST_F(Proxied, NameOverridesACookie) {
  EXPECT_EQ(std::get<Admission>(By("alice", "/Tasks/TopN.asp", CookieOfBob())).logon, "KALVO\\alice");
}

TEST_F(Proxied, SessionsAreReachedByNoCookie) {
  std::get<Admission>(By("bob")).session->Set("Visits", std::int32_t{1});
  for (const auto& entry : std::filesystem::directory_iterator(folder_.Path() / "sessions")) {
    const std::string name = entry.path().stem().string();
    for (const std::string& id : {name, name.substr(name.find('-') + 1), Fingerprint("kalvo\\bob")}) {
      EXPECT_NE(Sent("/Tasks/TopN.asp", "KalvoSession=" + id), "") << id;
    }
  }
}

TEST_F(Proxied, UsersWithoutAPasswordDoNotSignInByTheForm) {
  users_.Put({"KALVO\\carol", false, true, "-"});
  for (const char* password : {"", "-", "correct+horse"}) {
    EXPECT_EQ(Variable(std::get<Admission>(SignIn("carol", password)), "KALVO_SIGN_IN"), "wrong") << password;
  }
}

}  // namespace
}  // namespace kalvo::test
