#include <iostream>

#include "database/sample/sample.h"
#include "database/sample_mail/sample_mail.h"
#include "host/cli/arguments.h"
#include "host/cli/commands.h"

namespace kalvo::host {

int RunSample(const SampleArguments& arguments) {
  sample::TextProgress progress(std::cerr);
  const sample::SampleOptions options{arguments.out, sample::SampleSizeFromName(arguments.size), arguments.seed,
                                      sample::SampleMailFromName(arguments.mail)};
  sample::MakeSample(options, progress);
  sample::MakeSampleMail(options, progress);
  return kDone;
}

}  // namespace kalvo::host
