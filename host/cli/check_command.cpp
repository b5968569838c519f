#include <algorithm>
#include <fstream>
#include <iomanip>
#include <iostream>

#include "host/attack/attack.h"
#include "host/cli/command_line.h"
#include "host/cli/commands.h"
#include "host/cli/database_check.h"
#include "host/parts/database_part.h"
#include "host/parts/mail_part.h"
#include "host/parts/parts.h"
#include "host/parts/setting_error.h"
#include "host/web/settings.h"

namespace kalvo::host {

namespace {

// A line that a browser sends as its Cookie header; not an argument, because others see those.
std::string CookieOf(const std::string& file) {
  std::ifstream opened;
  if (file != "-") opened.open(file);
  std::istream& in = file == "-" ? std::cin : opened;
  std::string line;
  if (!std::getline(in, line)) throw SettingError("--cookie: there is no line to read in " + file);
  if (line.ends_with('\r')) line.pop_back();
  if (line.starts_with("Cookie: ")) line.erase(0, 8);
  const bool isHeader = !line.empty() && std::all_of(line.begin(), line.end(), [](char c) { return c >= ' '; });
  if (!isHeader) throw SettingError("--cookie: " + file + " begins with no Cookie header, such as NAME=VALUE");
  return line;
}

#ifdef KALVO_HAS_CHECK
// Tells what was found at the mail servers.
bool MailIsWell(const std::string& where) {
  bool isWell = true;
  for (const MailFinding& finding : CheckMail(where)) {
    std::cout << std::left << std::setw(12) << "Mail" << (finding.isGood ? "" : "fails: ") << finding.text << '\n';
    isWell = isWell && finding.isGood;
  }
  return isWell;
}
#endif

}  // namespace

int RunCheck(const CheckArguments& arguments) {
  if (arguments.attack) {
    return attack::RunAttack({*arguments.attack, arguments.cookie ? CookieOf(*arguments.cookie) : ""}, std::cout);
  }
#ifdef KALVO_HAS_CHECK
  const web::Settings settings = arguments.config ? web::ReadSettings(*arguments.config) : web::Settings();
  const DatabaseProof proof = ProveDatabaseAside(settings.Parts());  // before anything is open
  const Parts parts(settings.Parts());
  const int database = CheckDatabase(
      parts.GetPlatform(), {settings.parts.database, DescribeDriver(parts.GetPlatform().database), proof}, std::cout);
  return MailIsWell(settings.parts.mail) ? database : kFailed;
#else
  std::cerr << "kalvo: this build cannot check" << (arguments.config ? " " + *arguments.config : "") << '\n';
  return kFailed;
#endif
}

}  // namespace kalvo::host
