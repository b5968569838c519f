#include <iostream>

#include "database/sample/sample.h"
#include "database/sample_mail/sample_mail.h"
#include "host/cli/command_line.h"
#include "host/cli/commands.h"

namespace kalvo::host {
namespace {

// Whoever asks for a seed asks for the same sample again, to the last identifier. Any other has a key of its own, so
// that a sample that somebody makes a live store of has none that others know.
std::optional<sample::SampleKey> KeyFor(const SampleArguments& arguments) {
  if (arguments.seed) return std::nullopt;
  return sample::RandomSampleKey();
}

}  // namespace

int RunSample(const SampleArguments& arguments) {
  sample::TextProgress progress(std::cerr);
  const sample::SampleOptions options{arguments.out, sample::SampleSizeFromName(arguments.size),
                                      arguments.seed.value_or(1), sample::SampleMailFromName(arguments.mail),
                                      KeyFor(arguments)};
  sample::MakeSample(options, progress);
  sample::MakeSampleMail(options, progress);
  return kDone;
}

}  // namespace kalvo::host
