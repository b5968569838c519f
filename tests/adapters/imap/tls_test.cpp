// Encrypted connections: only a server that proves who it is hears the password.
#include <gnutls/gnutls.h>
#include <gnutls/x509.h>
#include <gtest/gtest.h>

#include <ctime>
#include <stdexcept>

#include "adapters/imap/fake_mail_server.h"
#include "adapters/imap/imap_under_test.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/live_mailbox.h"
#include "support/error_of.h"
#include "support/process.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

// A certificate for `host` that vouches for itself, and its key, as PEM files.
void MakeCertificate(const std::string& host, const std::string& certificateFile, const std::string& keyFile) {
  gnutls_x509_privkey_t key;
  gnutls_x509_crt_t certificate;
  gnutls_x509_privkey_init(&key);
  gnutls_x509_crt_init(&certificate);
  gnutls_x509_privkey_generate(key, GNUTLS_PK_ECDSA, GNUTLS_CURVE_TO_BITS(GNUTLS_ECC_CURVE_SECP256R1), 0);
  gnutls_x509_crt_set_version(certificate, 3);
  gnutls_x509_crt_set_serial(certificate, "\x01", 1);
  gnutls_x509_crt_set_activation_time(certificate, std::time(nullptr) - 3600);
  gnutls_x509_crt_set_expiration_time(certificate, std::time(nullptr) + 3600);
  gnutls_x509_crt_set_dn(certificate, ("CN=" + host).c_str(), nullptr);
  gnutls_x509_crt_set_subject_alt_name(certificate, GNUTLS_SAN_DNSNAME, host.data(), static_cast<unsigned>(host.size()),
                                       GNUTLS_FSAN_SET);
  gnutls_x509_crt_set_ca_status(certificate, 1);
  gnutls_x509_crt_set_key(certificate, key);
  gnutls_x509_crt_sign2(certificate, certificate, key, GNUTLS_DIG_SHA256, 0);
  const auto write = [](const std::string& file, gnutls_datum_t& text) {
    WriteFile(file, std::string(reinterpret_cast<const char*>(text.data), text.size));
    gnutls_free(text.data);
  };
  gnutls_datum_t text{};
  if (gnutls_x509_crt_export2(certificate, GNUTLS_X509_FMT_PEM, &text) < 0) throw std::runtime_error("no certificate");
  write(certificateFile, text);
  if (gnutls_x509_privkey_export2(key, GNUTLS_X509_FMT_PEM, &text) < 0) throw std::runtime_error("no key");
  write(keyFile, text);
  gnutls_x509_crt_deinit(certificate);
  gnutls_x509_privkey_deinit(key);
}

class ImapTls : public ::testing::Test {
 protected:
  // Serves with a certificate for that host, STARTTLS on one port and TLS on another.
  void Serve(const std::string& host) {
    MakeCertificate(host, CertificateFile(), Key());
    tlsPort_ = FreePort();
    server_ = std::make_unique<DovecotServer>(
        FixtureUsers(), "ssl = required\nssl_cert = <" + CertificateFile() + "\nssl_key = <" + Key() +
                            "\nservice imap-login {\n  inet_listener imaps {\n    port = " + std::to_string(tlsPort_) +
                            "\n    ssl = yes\n  }\n}\n");
  }

  std::string CertificateFile() const { return (folder_.Path() / "certificate.pem").string(); }
  std::string Key() const { return (folder_.Path() / "key.pem").string(); }

  // What comes of opening a mailbox: "" when it opens.
  std::string Opened(imap::Security security, const std::string& authorities) {
    auto settings = imap::ReadSettings(StoreAddress(*server_));
    settings.server.host = "localhost";
    settings.server.security = security;
    settings.server.certificateFile = authorities;
    if (security == imap::Security::Tls) settings.server.port = static_cast<std::uint16_t>(tlsPort_);
    const auto live = Browse(std::make_shared<imap::ImapStore>(settings));
    return ErrorOf([&] { live->GotoContainer("EX01", "alice", "Inbox", 0, live::kByPath); }).Description();
  }

  TemporaryFolder folder_;
  std::unique_ptr<DovecotServer> server_;
  int tlsPort_ = 0;
};

constexpr imap::Security kEncrypted[] = {imap::Security::StartTls, imap::Security::Tls};

TEST_F(ImapTls, ATrustedServerIsSpokenToEncrypted) {
  Serve("localhost");
  for (const auto security : kEncrypted) EXPECT_EQ(Opened(security, CertificateFile()), "");
}

TEST_F(ImapTls, AServerThatNobodyVouchesForIsNot) {
  Serve("localhost");
  for (const auto security : kEncrypted) {
    EXPECT_NE(Opened(security, "").find("has no TLS that can be trusted"), std::string::npos);
  }
}

TEST_F(ImapTls, AServerOfAnotherNameIsNot) {
  Serve("other.example");
  for (const auto security : kEncrypted) {
    EXPECT_NE(Opened(security, CertificateFile()).find("has no TLS that can be trusted"), std::string::npos);
  }
}

// What comes of asking a server for STARTTLS that answers so.
std::string AskedForTls(const std::string& answer) {
  const TemporaryFolder folder;
  FakeMailServer server;
  server.Misbehave("STARTTLS", [&](Talk& talk, const std::string& tag) { talk.Send(tag + answer); });
  auto settings = imap::ReadSettings(StoreAddress(folder.Path().string(), server.Port(), "&tls=starttls&silence=1"));
  const auto live = Browse(std::make_shared<imap::ImapStore>(settings));
  const std::string failure =
      ErrorOf([&] { live->GotoContainer("EX01", "alice", "Inbox", 0, live::kByPath); }).Description();
  for (const auto& command : server.Commands()) EXPECT_FALSE(command.starts_with("LOGIN")) << "the password was told";
  return failure;
}

TEST(ImapStartTls, IsNeverDoneWithout) {
  EXPECT_NE(AskedForTls(" NO not today\r\n").find("refused: not today (STARTTLS)"), std::string::npos);
  EXPECT_NE(AskedForTls(" BAD what?\r\n").find("(STARTTLS)"), std::string::npos);
}

TEST(ImapStartTls, BelievesNothingThatCameBefore) {
  const auto failure = AskedForTls(" OK go\r\n* CAPABILITY IMAP4rev1\r\n");
  EXPECT_NE(failure.find("(STARTTLS)"), std::string::npos) << failure;
}

}  // namespace
}  // namespace kalvo::test
