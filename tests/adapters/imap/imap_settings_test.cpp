#include "adapters/imap/imap_settings.h"

#include <gtest/gtest.h>

#include "kalvo/platform/error.h"
#include "support/error_of.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace imap;

class ImapSettings : public ::testing::Test {
 protected:
  ImapSettings() { WriteFile(folder_.Path() / "pw", "secret word\r\nand a note\n"); }

  std::string With(std::string_view place, std::string_view more = "") const {
    return std::string(place) + "?directory=mail.txt&password-file=" + (folder_.Path() / "pw").string() +
           std::string(more);
  }

  std::string Refusal(const std::string& url) const {
    const Error error = ErrorOf([&] { ReadSettings(url); });
    EXPECT_EQ(error.Number(), error.Description().empty() ? 0 : codes::kFailed);
    return error.Description();
  }

  TemporaryFolder folder_;
};

TEST_F(ImapSettings, HaveLimitsUnlessTheAddressNamesOthers) {
  const auto limits = ReadSettings(With("imap://admin@mail.example.com/")).limits;
  EXPECT_EQ(limits.lineBytes, 16'777'216u);
  EXPECT_EQ(limits.literalBytes, 16'777'216u);
  EXPECT_EQ(limits.answerBytes, 67'108'864u);
  EXPECT_EQ(limits.depth, 500);
  EXPECT_EQ(limits.silence, std::chrono::seconds(10));
  EXPECT_EQ(limits.operation, std::chrono::seconds(20));
  for (const auto& [value, taken] :
       {std::pair("1", true), std::pair("3600", true), std::pair("0", false), std::pair("3601", false)}) {
    EXPECT_EQ(Refusal(With("imap://admin@mail.example.com/", std::string("&silence=") + value)).empty(), taken)
        << value;
    EXPECT_EQ(Refusal(With("imap://admin@mail.example.com/", std::string("&time-limit=") + value)).empty(), taken)
        << value;
  }
}

TEST_F(ImapSettings, AreReadFromAnAddress) {
  const auto settings =
      ReadSettings(With("imap://ad%6Din@mail.example.com:1143/", "&template=%7Bmailbox%7D%2A{admin}"));
  EXPECT_EQ(settings.administrator, "admin");
  EXPECT_EQ(settings.password, "secret word");
  EXPECT_EQ(settings.server.host, "mail.example.com");
  EXPECT_EQ(settings.server.port, 1143);
  EXPECT_EQ(settings.server.security, Security::StartTls);
  EXPECT_EQ(settings.loginTemplate, "{mailbox}*{admin}");
  EXPECT_EQ(settings.directoryFile, "mail.txt");
}

TEST_F(ImapSettings, HaveTheUsualPorts) {
  EXPECT_EQ(ReadSettings(With("imap://a@h/")).server.port, 143);
  EXPECT_EQ(ReadSettings(With("imaps://a@h")).server.port, 993);
  EXPECT_EQ(ReadSettings(With("imaps://a@h")).server.security, Security::Tls);
  EXPECT_EQ(ReadSettings(With("imap://a@[::1]:7/")).server.host, "::1");
}

TEST_F(ImapSettings, LeadEachServerNameToAnAddress) {
  const auto settings = ReadSettings(With("imap://a@one/", "&server=EX02=two:2143&tls=none&plain=yes"));
  EXPECT_EQ(settings.AddressOf("EX01").host, "one");
  EXPECT_EQ(settings.AddressOf("ex02").host, "two");
  EXPECT_EQ(settings.AddressOf("ex02").port, 2143);
  EXPECT_EQ(settings.AddressOf("ex02").security, Security::None);
  EXPECT_EQ(settings.AddressOf("evil.example").host, "one") << "a name from a request is never a host";
}

TEST_F(ImapSettings, NameWhoLogsIn) {
  const auto named = ReadSettings(With("imap://kalvo@localhost/"));
  EXPECT_EQ(named.LoginOf("alice"), "alice*kalvo");
  EXPECT_EQ(named.LoginAs("alice*kalvo").authenticates, "");
  const auto acting = ReadSettings(With("imap://kalvo@localhost/", "&login=authorize"));
  EXPECT_EQ(acting.LoginOf("alice"), "alice");
  EXPECT_EQ(acting.LoginAs("alice").authenticates, "kalvo");
  EXPECT_EQ(ReadSettings(With("imap://a@127.0.0.1/", "&tls=none")).server.security, Security::None) << "this machine";
}

TEST_F(ImapSettings, RefuseWhatTheyDoNotUnderstand) {
  const struct {
    const char* why;
    std::string url, words;
  } kCases[] = {
      {"another scheme", With("http://a@h/"), "must begin with \"imap://\""},
      {"no administrator", With("imap://h/"), "the administrator is missing"},
      {"no host", With("imap://a@/"), "the host is missing"},
      {"a port that is none", With("imap://a@h:99999/"), "the port must be a number from 1 to 65535"},
      {"no directory", "imap://a@h/?password-file=pw", "directory=FILE is missing"},
      {"no password file", "imap://a@h/?directory=d", "password-file=FILE is missing"},
      {"a password file that is not there", "imap://a@h/?directory=d&password-file=/nowhere", "cannot be read"},
      {"an unknown setting", With("imap://a@h/", "&colour=red"), "\"colour\" is not a setting"},
      {"an unknown kind of encryption", With("imap://a@h/", "&tls=maybe"), "tls must be none, starttls or tls"},
      {"a broken encoding", With("imap://a@h/", "&template=%4"), "hexadecimal"},
      {"a password in plain words to another machine", With("imap://a@mail.example.com/", "&tls=none"),
       "tls=none would send the password to mail.example.com"},
      {"the same to one of several", With("imap://a@localhost/", "&tls=none&server=EX02=two"), "the password to two"},
      {"an unknown way to log in", With("imap://a@h/", "&login=magic"), "login must be name or authorize"},
      {"a server without an address", With("imap://a@h/", "&server=EX02"), "NAME=HOST:PORT"},
      {"a time that is none", With("imap://a@h/", "&silence=0"), "silence must be a number from 1 to 3600"},
      {"a line end in the administrator", With("imap://a%0D%0Ab@h/"), "control character"},
      {"a line end in the template", With("imap://a@h/", "&template=%0D%0A"), "control character"},
      {"a NUL in the host", With("imap://a@h%00/"), "control character"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_NE(Refusal(c.url).find(c.words), std::string::npos) << Refusal(c.url);
  }
}

TEST_F(ImapSettings, RefuseAPasswordThatCouldEndACommand) {
  WriteFile(folder_.Path() / "pw", std::string("x\x01y\n"));
  EXPECT_NE(Refusal(With("imap://a@h/")).find("control character"), std::string::npos);
}

}  // namespace
}  // namespace kalvo::test
