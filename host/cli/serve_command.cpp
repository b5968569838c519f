#include <iostream>

#include "host/cli/command_line.h"
#include "host/cli/commands.h"
#include "host/web/settings.h"
#include "host/web/supervisor.h"

namespace kalvo::host {
namespace {

// The settings' file, and what the command line says in its place.
web::Settings Load(const ServeArguments& arguments) {
  web::Settings settings = arguments.config ? web::ReadSettings(*arguments.config) : web::Settings();
  if (arguments.listen) settings.listen = *arguments.listen;
  if (arguments.site) settings.site = *arguments.site;
  if (arguments.workers) settings.workers = *arguments.workers;
  web::Complete(settings);
  return settings;
}

}  // namespace

int RunServe(const ServeArguments& arguments) {
  web::Supervisor([&arguments] { return Load(arguments); }).Run(std::cout);
  return kDone;
}

}  // namespace kalvo::host
