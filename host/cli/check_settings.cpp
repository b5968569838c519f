#include <iostream>

#include "host/cli/arguments.h"
#include "host/cli/check_command.h"
#include "host/cli/commands.h"
#include "host/parts/database_part.h"
#include "host/parts/parts.h"
#include "host/web/settings.h"

namespace kalvo::host {

int RunCheck(const CheckArguments& arguments) {
#ifdef KALVO_HAS_CHECK
  const web::Settings settings = arguments.config ? web::ReadSettings(*arguments.config) : web::Settings();
  const DatabaseProof proof = ProveDatabaseAside(settings.Parts());  // before anything is open
  const Parts parts(settings.Parts());
  return RunCheck(parts.GetPlatform(), {settings.database, DescribeDriver(parts.GetPlatform().database), proof},
                  std::cout);
#else
  std::cerr << "kalvo: this build cannot check" << (arguments.config ? " " + *arguments.config : "") << '\n';
  return kFailed;
#endif
}

}  // namespace kalvo::host
