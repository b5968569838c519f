// Who reaches a server, and what the settings must say before anybody does.

#include <gtest/gtest.h>

#include <functional>

#include "host/parts/setting_error.h"
#include "host/web/settings.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace web;

class Reach : public testing::Test {
 protected:
  Reach() {
    for (const char* name : {"users", "certificate", "key"}) WriteFile(File(name), "");
    settings_.site = folder_.Path();
  }

  std::filesystem::path File(const char* name) const { return folder_.Path() / name; }

  void Encrypt() {
    settings_.certificate = File("certificate");
    settings_.certificateKey = File("key");
  }

  // Why the settings are refused; "" when they are taken.
  std::string Refusal() {
    try {
      Complete(settings_);
      return "";
    } catch (const host::SettingError& error) {
      return error.what();
    }
  }

  TemporaryFolder folder_;
  Settings settings_;
};

TEST_F(Reach, OfThisMachineNeedsNothing) {
  EXPECT_EQ(Refusal(), "");
  EXPECT_EQ(settings_.hosts, (std::vector<std::string>{"localhost", "127.0.0.1", "[::1]", "127.0.0.1"}));
  EXPECT_FALSE(settings_.Encrypts());
}

TEST_F(Reach, OfOthersNeedsASignInEncryptionAndNames) {
  settings_.listen = "0.0.0.0:8443";
  EXPECT_EQ(Refusal(), "listen: other machines reach 0.0.0.0:8443, so visitors have to sign in: users is needed");
  settings_.users = File("users");
  EXPECT_EQ(Refusal(),
            "listen: other machines reach 0.0.0.0:8443, so it has to be encrypted: certificate and certificate_key are "
            "needed, or trusted_proxy where a web server in front of it encrypts");
  Encrypt();
  EXPECT_EQ(Refusal(), "listen: other machines reach 0.0.0.0:8443, so hosts has to say by which names");
  settings_.hosts = {"mail.example"};
  EXPECT_EQ(Refusal(), "");
  EXPECT_TRUE(settings_.Encrypts());
}

TEST_F(Reach, OfOthersIsEncryptedByAProxyToo) {
  settings_.listen = "10.0.0.5:8080";
  settings_.users = File("users");
  settings_.trustedProxy = {"10.0.0.1"};
  EXPECT_EQ(Refusal(), "");
  EXPECT_EQ(settings_.hosts.back(), "10.0.0.5");
}

TEST_F(Reach, OfAnNginxThatIsThereAlreadyIsItsOwnBusiness) {
  settings_.web = "external";
  EXPECT_EQ(Refusal(), "");
  EXPECT_TRUE(settings_.hosts.empty());
  Encrypt();
  EXPECT_EQ(Refusal(), "certificate: with web = \"external\" that nginx has the certificate");
}

TEST_F(Reach, WithHalfACertificateIsRefused) {
  settings_.certificate = File("certificate");
  EXPECT_EQ(Refusal(), "certificate and certificate_key are needed both, or neither");
  settings_.certificateKey = File("missing");
  EXPECT_EQ(Refusal(), "certificate: there is no file " + File("missing").string());
}

}  // namespace
}  // namespace kalvo::test
