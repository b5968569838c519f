#include <csignal>
#include <exception>
#include <iostream>

#include "host/cli/command_line.h"
#include "host/cli/commands.h"
#include "host/parts/setting_error.h"

namespace {

struct Run {
  int operator()(const kalvo::host::PageArguments& arguments) const { return kalvo::host::RunPage(arguments); }
  int operator()(const kalvo::host::ServeArguments& arguments) const { return kalvo::host::RunServe(arguments); }
  int operator()(const kalvo::host::SampleArguments& arguments) const { return kalvo::host::RunSample(arguments); }
  int operator()(const kalvo::host::CheckArguments& arguments) const { return kalvo::host::RunCheck(arguments); }
  int operator()(const kalvo::host::PasswdArguments& arguments) const { return kalvo::host::RunPasswd(arguments); }
  int operator()(const kalvo::host::UndeleteArguments& arguments) const { return kalvo::host::RunUndelete(arguments); }
  int operator()(const kalvo::host::AuditArguments& arguments) const { return kalvo::host::RunAudit(arguments); }
};

}  // namespace

int main(int count, char** words) {
  // A peer that hangs up is an error of that write, not the end of the process.
  std::signal(SIGPIPE, SIG_IGN);
  try {
    const auto parsed = kalvo::host::ParseArguments(count, words);
    if (const int* code = std::get_if<int>(&parsed)) return *code;
    return std::visit(Run{}, std::get<kalvo::host::Arguments>(parsed));
  } catch (const kalvo::host::SettingError& error) {
    std::cerr << "kalvo: " << error.what() << '\n';
    return kalvo::host::kWrongUsage;
  } catch (const std::exception& error) {
    std::cerr << "kalvo: " << error.what() << '\n';
    return kalvo::host::kFailed;
  }
}
