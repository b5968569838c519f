#include <iostream>

#include "database/sample/sample.h"
#include "host/cli/arguments.h"
#include "host/cli/commands.h"

namespace kalvo::host {

int RunSample(const SampleArguments& arguments) {
  sample::TextProgress progress(std::cerr);
  sample::MakeSample({arguments.out, sample::SampleSizeFromName(arguments.size), arguments.seed}, progress);
  return kDone;
}

}   // namespace kalvo::host
