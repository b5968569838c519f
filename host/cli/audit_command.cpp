#include <iostream>

#include "host/audit/reading.h"
#include "host/audit/verification.h"
#include "host/cli/command_line.h"
#include "host/cli/commands.h"
#include "host/parts/setting_error.h"
#include "host/web/settings.h"

namespace kalvo::host {
namespace {

std::filesystem::path FolderOf(const AuditArguments& arguments) {
  std::filesystem::path folder;
  if (arguments.folder) {
    folder = *arguments.folder;
  } else if (arguments.config) {
    web::Settings settings = web::ReadSettings(*arguments.config);
    web::CompleteFolders(settings);
    folder = settings.audit;
  } else {
    throw SettingError("--config FILE or --folder DIR is needed");
  }
  if (!std::filesystem::is_directory(folder)) throw SettingError("there is no audit log in " + folder.string());
  return folder;
}

int Verify(const std::filesystem::path& folder, const std::string& hash) {
  const audit::Verification found = audit::Verify(folder, hash);
  for (const std::string& text : found.noted) std::cout << "note: " << text << '\n';
  for (const std::string& text : found.broken) std::cout << "broken: " << text << '\n';
  const bool missing = !hash.empty() && !found.containsHash;
  if (missing) std::cout << "broken: no line has the hash " << hash << '\n';
  std::cout << found.lines << (found.lines == 1 ? " line" : " lines");
  if (found.lines > 0) std::cout << ", the last is number " << found.lastNumber << " with hash " << found.lastHash;
  std::cout << '\n' << (found.whole && !missing ? "the log is whole" : "the log is not whole") << '\n';
  return found.whole && !missing ? kDone : kFailed;
}

int List(const std::filesystem::path& folder, const AuditArguments& arguments) {
  audit::Filter filter;
  if (!arguments.event.empty()) {
    filter.event = audit::EventNamed(arguments.event);
    if (!filter.event) {
      std::string message = "there is no event " + arguments.event + "; there are";
      for (const std::string_view name : audit::EventNames()) message.append(" ").append(name);
      throw SettingError(message);
    }
  }
  filter.user = arguments.user;
  filter.since = arguments.since;
  filter.until = arguments.until;
  const auto records = audit::Newest(folder, filter, arguments.last);
  for (auto record = records.rbegin(); record != records.rend(); ++record) std::cout << audit::LineOf(*record) << '\n';
  return kDone;
}

}  // namespace

int RunAudit(const AuditArguments& arguments) {
  const std::filesystem::path folder = FolderOf(arguments);
  return arguments.verify ? Verify(folder, arguments.hash) : List(folder, arguments);
}

}  // namespace kalvo::host
