#include "host/web/settings.h"

#include <gtest/gtest.h>

#include <sstream>

#include "host/parts/setting_error.h"
#include "source_folder.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace web;

Settings Read(const TemporaryFolder& folder, const std::string& text) {
  WriteFile(folder.Path() / "kalvo.toml", text);
  return ReadSettings(folder.Path() / "kalvo.toml");
}

// What follows the file's name in the refusal of a text.
std::string Refusal(const std::string& text) {
  const TemporaryFolder folder;
  const auto file = folder.Path() / "kalvo.toml";
  try {
    Read(folder, text);
  } catch (const host::SettingError& error) {
    const std::string message = error.what();
    EXPECT_TRUE(message.starts_with(file.string())) << message;
    return message.substr(file.string().size());
  }
  return "taken";
}

TEST(Settings, HaveDefaults) {
  const TemporaryFolder folder;
  const Settings settings = Read(folder, "");
  EXPECT_EQ(settings.listen, "127.0.0.1:8080");
  EXPECT_EQ(settings.parts.database, "odbc");
  EXPECT_EQ(settings.parts.locale, "en-US");
  EXPECT_EQ(settings.parts.topNRows, 100);
  EXPECT_EQ(settings.parts.topNOldDays, 90);
  EXPECT_EQ(settings.workers, 4);
  EXPECT_EQ(settings.limits.seconds, 30);
  EXPECT_EQ(settings.limits.mebibytes, 256u);
  EXPECT_FALSE(settings.External());
  EXPECT_EQ(settings.logon, "");
  EXPECT_TRUE(settings.session.empty());
}

TEST(Settings, AreRead) {
  const TemporaryFolder folder;
  const Settings settings = Read(folder, R"(
listen = "[::1]:81"
site = "pages"
workers = 2
queue = 3
time_limit = 1.5
memory_limit = 64
database = "sqlite:data/kalvo.db"
mail = "maildir:/mail"
locale = "de-DE"
topn_rows = 20
topn_old_days = 365
holding_days = 30
run = "../run"
web = "external"
nginx = "/opt/nginx"
log = "kalvo.log"
error_pages = "errors"
[visitor]
logon = 'KALVO\carol'
[visitor.session]
KalvoAdministrator = "Yes"
Other = ""
)");
  EXPECT_EQ(settings.listen, "[::1]:81");
  EXPECT_EQ(settings.site, folder.Path() / "pages");
  EXPECT_EQ(settings.workers, 2);
  EXPECT_EQ(settings.queue, 3);
  EXPECT_EQ(settings.limits.seconds, 1.5);
  EXPECT_EQ(settings.limits.mebibytes, 64u);
  EXPECT_EQ(settings.parts.database, "sqlite:" + (folder.Path() / "data/kalvo.db").string());
  EXPECT_EQ(settings.parts.mail, "maildir:/mail");
  EXPECT_EQ(settings.parts.locale, "de-DE");
  EXPECT_EQ(settings.parts.topNRows, 20);
  EXPECT_EQ(settings.parts.topNOldDays, 365);
  EXPECT_EQ(settings.holdingDays, 30);
  EXPECT_EQ(settings.Parts().topNRows, 20);
  EXPECT_EQ(settings.Parts().topNOldDays, 365);
  EXPECT_EQ(settings.run, folder.Path().parent_path() / "run");
  EXPECT_TRUE(settings.External());
  EXPECT_EQ(settings.nginx, "/opt/nginx");
  EXPECT_EQ(settings.log, (folder.Path() / "kalvo.log").string());
  EXPECT_EQ(settings.errorPages, folder.Path() / "errors");
  EXPECT_EQ(settings.logon, "KALVO\\carol");
  EXPECT_EQ(settings.session, (host::NamedTexts{{"KalvoAdministrator", "Yes"}, {"Other", ""}}));
}

TEST(Settings, TakeEveryKindOfMailboxes) {
  const TemporaryFolder folder;
  for (const std::string mail :
       {"", "maildir:/mail", "imap://admin@host:143/?directory=d", "imaps://admin@host:993/"}) {
    EXPECT_EQ(Read(folder, "mail = \"" + mail + "\"").parts.mail, mail);
  }
}

TEST(Settings, TheFileOfTheSourceFolderShowsTheDefaults) {
  const Settings shown = ReadSettings(std::filesystem::path(KALVO_SOURCE_DIR) / "kalvo.toml");
  const Settings settings;
  EXPECT_EQ(shown.listen, settings.listen);
  EXPECT_EQ(shown.workers, settings.workers);
  EXPECT_EQ(shown.queue, settings.queue);
  EXPECT_EQ(shown.limits.seconds, settings.limits.seconds);
  EXPECT_EQ(shown.limits.mebibytes, settings.limits.mebibytes);
  EXPECT_EQ(shown.parts.locale, settings.parts.locale);
  EXPECT_EQ(shown.parts.topNRows, settings.parts.topNRows);
  EXPECT_EQ(shown.parts.topNOldDays, settings.parts.topNOldDays);
  EXPECT_EQ(shown.web, settings.web);
  EXPECT_EQ(shown.nginx, settings.nginx);
  EXPECT_EQ(shown.log, settings.log);
  EXPECT_EQ(shown.errorPages, settings.errorPages);
  EXPECT_EQ(shown.debug, settings.debug);
  EXPECT_EQ(shown.addressConnections, settings.addressConnections);
  EXPECT_EQ(shown.workerMemory, settings.workerMemory);
  EXPECT_EQ(shown.parts.unknownEngine, settings.parts.unknownEngine);
  EXPECT_EQ(shown.holdingDays, settings.holdingDays);
  EXPECT_EQ(shown.sessionMinutes, settings.sessionMinutes);
  EXPECT_EQ(shown.sessionsPerUser, settings.sessionsPerUser);
}

TEST(Settings, AreAllShownInTheFileAndExplainedToTheOperator) {
  const std::filesystem::path source(KALVO_SOURCE_DIR);
  const std::string file = ReadFile(source / "kalvo.toml"), guide = ReadFile(source / "docs/operating.md");
  const std::string refusal = Refusal("worker = 2"), before = "there are ";
  std::istringstream words(refusal.substr(refusal.find(before) + before.size()));
  int count = 0;
  for (std::string word; words >> word && word != "and"; ++count) {
    EXPECT_NE(file.find("\n" + word + " = "), std::string::npos) << word;
    EXPECT_NE(guide.find("`" + word + "`"), std::string::npos) << word;
  }
  EXPECT_GT(count, 30);
}

TEST(Settings, SayWhatIsWrongAndWhatWouldBeRight) {
  const struct {
    const char* why;
    const char* text;
    const char* refusal;
  } kCases[] = {
      {"too few", "\nworkers = 0\n", ":2: workers takes a whole number from 1 to 1024"},
      {"too many", "workers = 1025", ":1: workers takes a whole number from 1 to 1024"},
      {"a fraction", "workers = 1.5", ":1: workers takes a whole number from 1 to 1024"},
      {"text for a number", "queue = \"5\"", ":1: queue takes a whole number from 1 to 4096"},
      {"a negative time", "time_limit = -1", ":1: time_limit takes a number of seconds from 0.1 to 3600"},
      {"no number at all", "time_limit = nan", ":1: time_limit takes a number of seconds from 0.1 to 3600"},
      {"a number for text", "site = 5", ":1: site takes the folder of the pages"},
      {"another database", "database = \"mysql:x\"", ":1: database takes \"odbc\" or \"sqlite:FILE\""},
      {"no file", "database = \"sqlite:\"", ":1: database takes \"odbc\" or \"sqlite:FILE\""},
      {"another locale", "locale = \"xx\"", ":1: locale takes one of en-US, en-GB, de-DE, fr-FR"},
      {"a Top-N of no rows", "topn_rows = 0", ":1: topn_rows takes a whole number from 1 to 10000"},
      {"too many rows", "topn_rows = 10001", ":1: topn_rows takes a whole number from 1 to 10000"},
      {"no days of holding", "holding_days = 0", ":1: holding_days takes a whole number of days from 1 to 3650"},
      {"no days", "\ntopn_old_days = 0", ":2: topn_old_days takes a whole number of days from 1 to 3650"},
      {"text for days", "topn_old_days = \"90\"", ":1: topn_old_days takes a whole number of days from 1 to 3650"},
      {"another mail", "mail = \"pop3:x\"",
       ":1: mail takes \"maildir:DIR\", \"imap://HOST:PORT\", \"imaps://HOST:PORT\", or \"\" for none"},
      {"another web", "web = \"apache\"", ":1: web takes \"embedded\" or \"external\""},
      {"a name to listen on", "listen = \"console.example:80\"",
       ":1: listen takes an address and a port, such as \"127.0.0.1:8080\" or \"[::1]:8080\""},
      {"a text for a list", "hosts = \"mail.example\"",
       ":1: hosts takes a list of names without ports, such as [\"mail.example\"]"},
      {"a host with a port", "\nhosts = [\"mail.example\", \"mail.example:443\"]",
       ":2: hosts takes a list of names without ports, such as [\"mail.example\"]"},
      {"a proxy by name", "trusted_proxy = [\"proxy.example\"]",
       ":1: trusted_proxy takes a list of addresses and networks, such as [\"10.0.0.1\", \"10.1.0.0/16\"]"},
      {"everybody for a proxy", "trusted_proxy = [\"0.0.0.0/0\"]",
       ":1: trusted_proxy takes a list of addresses and networks, such as [\"10.0.0.1\", \"10.1.0.0/16\"]"},
      {"an empty log", "log = \"\"", ":1: log takes a file, or \"-\" for standard error"},
      {"no table", "visitor = 1", ":1: visitor takes a table"},
      {"an unknown key below", "[visitor]\nname = \"x\"",
       ":2: visitor.name takes logon = \"NAME\" and the table [visitor.session] only"},
      {"a session value that is no text", "[visitor.session]\nx = true",
       ":2: visitor.session.x takes text, such as \"Yes\""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Refusal(c.text), c.refusal);
  }
}

TEST(Settings, AnUnknownKeyIsRefusedWithTheKnownOnes) {
  const std::string refusal = Refusal("worker = 2");
  EXPECT_TRUE(refusal.starts_with(":1: there is no setting worker; there are listen hosts certificate")) << refusal;
}

TEST(Settings, AFileThatIsNoTomlIsRefusedWithItsLine) {
  EXPECT_TRUE(Refusal("workers = 2\nsite = \n").starts_with(":2: "));
}

TEST(Settings, AMissingFileIsRefused) { EXPECT_THROW(ReadSettings("/nowhere/kalvo.toml"), host::SettingError); }

TEST(Settings, AreCompletedAndChecked) {
  const TemporaryFolder folder;
  Settings settings;
  settings.site = folder.Path();
  Complete(settings);
  EXPECT_TRUE(settings.run.is_absolute());

  EXPECT_EQ(settings.workerMemory, 1024) << "256 for the script, 512 for a result, 256 beside";

  Settings narrow;
  narrow.site = folder.Path();
  narrow.workerMemory = 500;
  EXPECT_THROW(Complete(narrow), host::SettingError);
  narrow.workerMemory = 512;
  Complete(narrow);
  EXPECT_EQ(narrow.workerMemory, 512);

  Settings elsewhere;
  elsewhere.site = folder.Path() / "missing";
  EXPECT_THROW(Complete(elsewhere), host::SettingError);

  Settings pages;
  pages.site = folder.Path();
  pages.errorPages = folder.Path() / "missing";
  EXPECT_THROW(Complete(pages), host::SettingError);
}

}  // namespace
}  // namespace kalvo::test
