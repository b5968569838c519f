#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>

#include "host/web/settings.h"

namespace kalvo::host {
namespace {

using NamedValues = std::vector<std::pair<std::string, std::string>>;

// "NAME=VALUE", once for each time the option is given; the first "=" ends the name.
void AddNamed(CLI::App& app, const std::string& option, NamedValues& values, const std::string& form,
              const std::string& help) {
  const auto take = [option, form, &values](const std::string& word) {
    const auto end = word.find('=');
    if (end == 0 || end == std::string::npos) throw CLI::ValidationError(option, "takes " + form + ", not " + word);
    values.emplace_back(word.substr(0, end), word.substr(end + 1));
  };
  app.add_option_function<std::string>(option, take, help)
      ->type_name(form)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->trigger_on_parse();
}

void AddPage(CLI::App& app, PageArguments& page) {
  app.add_option("PAGE", page.page, "the page's file");
  app.add_option("--check", page.check, "compile every page of a site, and run none")->type_name("SITE");
  app.add_flag("--strict", page.strict, "fail also where a table or a function of the page's own failed");
  app.add_option("--root", page.root, "the site's root folder (default: the page's own folder)")->type_name("DIR");
  app.add_option("--url", page.url, "the page's address (default: \"/\" and the page's path below the root)")
      ->type_name("PATH");
  app.add_option("--query", page.query, "the query string, without \"?\"")->type_name("TEXT");
  app.add_option("--form", page.form, "a posted form, URL-encoded; makes the request a POST")->type_name("TEXT");
  app.add_option("--logon", page.logon, "the user's logon name")->type_name("NAME");
  AddNamed(app, "--application", page.application, "NAME=TEXT", "what Application(NAME) answers; may be repeated");
  AddNamed(app, "--session", page.session, "NAME=VALUE", "a session value; may be repeated");
  AddNamed(app, "--static", page.statics, "NAME=FILE.js",
           "a session static object: what the script evaluates to; may be repeated");
  app.add_option("--database", page.parts.database, "where \"KalvoDB\" points: sqlite:FILE, or odbc")
      ->type_name("URL")
      ->capture_default_str();
  app.add_flag("--unknown-engine", page.parts.unknownEngine,
               "take an ODBC database that nothing here keeps from being written");
  app.add_option("--mail", page.parts.mail, "gives the session its mailboxes: maildir:DIR or imap://HOST:PORT")
      ->type_name("URL");
  app.add_option("--locale", page.parts.locale, "how numbers and dates are written")
      ->type_name("NAME")
      ->capture_default_str();
  app.add_flag("--edge", page.edge, "apply the edge's rules to the request, as `kalvo serve` does");
  app.add_flag("--headers", page.headers, "print the status line and the headers before the body");
  app.add_option("--time-limit", page.limits.seconds, "seconds the page may take")
      ->type_name("SECONDS")
      ->check(CLI::Range(0.01, 86400.0))
      ->capture_default_str();
  app.add_option("--memory-limit", page.limits.mebibytes, "memory the page's script may take")
      ->type_name("MIB")
      ->check(CLI::Range(web::kMemoryLimit.least, web::kMemoryLimit.most))
      ->capture_default_str();
}

void AddServe(CLI::App& app, ServeArguments& serve) {
  app.add_option("--config", serve.config, "the settings' file")->type_name("FILE");
  app.add_option("--listen", serve.listen, "where browsers connect")->type_name("ADDRESS:PORT");
  app.add_option("--site", serve.site, "the site's root folder")->type_name("DIR");
  app.add_option("--workers", serve.workers, "how many pages run at a time")
      ->type_name("N")
      ->check(CLI::Range(web::kWorkers.least, web::kWorkers.most));
}

void AddSample(CLI::App& app, SampleArguments& sample) {
  app.add_option("--out", sample.out, "the folder that receives kalvo.db; made when it is not there")
      ->type_name("DIR")
      ->required();
  app.add_option("--size", sample.size, "how large the organization is")
      ->check(CLI::IsMember({"small", "medium", "large"}))
      ->capture_default_str();
  app.add_option("--seed", sample.seed,
                 "the same number makes the same data and identifiers (default: the data of 1, identifiers of its own)")
      ->type_name("N");
  app.add_option("--mail", sample.mail,
                 "whose mail is made: of alice, admin and the public folders alone, or of nobody")
      ->check(CLI::IsMember({"all", "users", "none"}))
      ->capture_default_str();
}

void AddCheck(CLI::App& app, CheckArguments& check) {
  CLI::Option* config = app.add_option("--config", check.config, "the settings' file");
  config->type_name("FILE");
  CLI::Option* attack = app.add_option("--attack", check.attack,
                                       "asks a running system of yours what it should refuse; changes nothing there");
  attack->type_name("URL")->excludes(config);
  app.add_option("--cookie", check.cookie,
                 "with --attack: the Cookie header of a signed-in visitor, in a file or \"-\"")
      ->type_name("FILE")
      ->needs(attack);
}

void AddPasswd(CLI::App& app, PasswdArguments& passwd) {
  CLI::Option* users = app.add_option("--users", passwd.users, "the users file; made when it is not there");
  CLI::Option* config = app.add_option("--config", passwd.config, "the settings' file, which names the users file");
  users->type_name("FILE")->excludes(config);
  config->type_name("FILE");
  app.add_option("NAME", passwd.name, "the user: alice, or DOMAIN\\alice");
  app.add_flag("--administrator", passwd.administrator, "may do and see everything");
  app.add_flag("--drill-down", passwd.drillDown, "may open her own mailbox");
  CLI::Option* remove = app.add_flag("--delete", passwd.remove, "removes the user");
  app.add_flag("--no-password", passwd.noPassword, "the user comes in by a proxy that knows her")->excludes(remove);
  app.add_flag("--end-sessions", passwd.endSessions, "signs the user out everywhere; everybody where no NAME is given")
      ->needs(config)
      ->excludes(remove);
}

void AddUndelete(CLI::App& app, UndeleteArguments& undelete) {
  app.add_option("--config", undelete.config, "the settings' file")->type_name("FILE")->required();
  CLI::Option* id = app.add_option("ID", undelete.id, "the message to restore; without it deleted messages are listed");
  app.add_option("--into", undelete.into, "another folder than the one it was in: Inbox\\Projects")
      ->type_name("PATH")
      ->needs(id);
}

void AddAudit(CLI::App& app, AuditArguments& audit) {
  app.add_option("--config", audit.config, "the settings' file, which names the log's folder")->type_name("FILE");
  app.add_option("--folder", audit.folder, "the log's folder, where no settings name it")->type_name("DIR");
  CLI::Option* verify = app.add_flag("--verify", audit.verify, "tell whether any line was changed or taken out");
  app.add_option("--contains", audit.hash, "with --verify: a hash from the server's log, whose line has to be there")
      ->type_name("HASH")
      ->needs(verify);
  app.add_option("--event", audit.event, "only lines of this event")->type_name("NAME");
  app.add_option("--user", audit.user, "only lines of this user: alice, or DOMAIN\\alice")->type_name("NAME");
  app.add_option("--since", audit.since, "only lines from this moment on, UTC: 2026-11-21, or 2026-11-21T16:40")
      ->type_name("TIME");
  app.add_option("--until", audit.until, "only lines before this moment")->type_name("TIME");
  app.add_option("--last", audit.last, "at most so many lines, the newest")->type_name("N")->capture_default_str();
}

// The words after the program's name, the last one first, as the parser wants them. "--query=" becomes "--query" and
// an empty word: the parser would take the next word for the value that is not there.
std::vector<std::string> WordsReversed(int count, char** words) {
  std::vector<std::string> reversed;
  for (int i = count - 1; i > 0; --i) {
    std::string word = words[i];
    if (word.starts_with("--") && word.find('=') == word.size() - 1) {
      reversed.emplace_back();
      word.pop_back();
    }
    reversed.push_back(std::move(word));
  }
  return reversed;
}

}  // namespace

std::variant<Arguments, int> ParseArguments(int count, char** words) {
  CLI::App app("Report tables for the console of a mail storage manager.", "kalvo");
  app.require_subcommand(1);
  PageArguments page;
  ServeArguments serve;
  SampleArguments sample;
  CheckArguments check;
  PasswdArguments passwd;
  UndeleteArguments undelete;
  AuditArguments audit;
  CLI::App* runPage = app.add_subcommand("page", "Run one page and print it");
  CLI::App* runServe = app.add_subcommand("serve", "Serve the console");
  CLI::App* runSample = app.add_subcommand("sample", "Make sample data");
  CLI::App* runCheck = app.add_subcommand("check", "Check the reporting database");
  CLI::App* runPasswd = app.add_subcommand("passwd", "Add a user, change her password and rights, or remove her");
  CLI::App* runUndelete = app.add_subcommand("undelete", "List deleted messages that are held, or restore one");
  AddPage(*runPage, page);
  AddServe(*runServe, serve);
  AddSample(*runSample, sample);
  AddCheck(*runCheck, check);
  CLI::App* runAudit = app.add_subcommand("audit", "Show what was done on a server, and check that nothing is missing");
  AddPasswd(*runPasswd, passwd);
  AddUndelete(*runUndelete, undelete);
  AddAudit(*runAudit, audit);

  try {
    app.parse(WordsReversed(count, words));
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kWrongUsage;
  }
  if (runPage->parsed()) return Arguments(std::move(page));
  if (runServe->parsed()) return Arguments(std::move(serve));
  if (runSample->parsed()) return Arguments(std::move(sample));
  if (runAudit->parsed()) return Arguments(std::move(audit));
  if (runPasswd->parsed()) return Arguments(std::move(passwd));
  if (runUndelete->parsed()) return Arguments(std::move(undelete));
  return Arguments(std::move(check));
}

}  // namespace kalvo::host
