#include "database/sample/sample.h"

#include <ostream>

#include "database/sample/organization.h"
#include "database/sample/sample_steps.h"
#include "database/sample/sqlite_writer.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/error.h"

namespace kalvo::sample {
namespace {

constexpr NamedStep kSteps[] = {
    {"groups", WriteGroups},
    {"servers", WriteServers},
    {"totals, activity and backups", WriteHistory},
    {"file systems and database files", WriteStorage},
    {"mailboxes", WriteMailboxes},
    {"mailbox groups", WriteGroupTotals},
    {"alerts", WriteAlerts},
    {"quota violations", WriteViolations},
    {"messages and rankings", WriteTopN},
};

constexpr struct {
  std::string_view name;
  SampleMail mail;
} kMails[] = {{"all", SampleMail::All}, {"users", SampleMail::Users}, {"none", SampleMail::None}};

}  // namespace

SampleMail SampleMailFromName(std::string_view name) {
  for (const auto& row : kMails) {
    if (row.name == name) return row.mail;
  }
  throw Error(codes::kFailed, Built([&](std::string& out) {
                Append(out, "There is no sample with the mail of \"", name, "\"; it has that of all, users or none.");
              }));
}

void WriteSample(const Organization& organization, RowWriter& rows, Progress& progress) {
  SampleRun run{organization, rows, progress};
  for (const NamedStep& step : kSteps) {
    progress.Step(step.name);
    step.write(run);
  }
}

void MakeSample(const SampleOptions& options, Progress& progress) {
  std::error_code failed;
  std::filesystem::create_directories(options.out, failed);
  if (failed) {
    throw Error(codes::kFailed, Built([&](std::string& out) {
                  Append(out, "The folder ", options.out.string(), " cannot be made: ", failed.message());
                }));
  }
  Organization organization = MakeOrganization(options.size, options.seed, progress);
  organization.key = options.key;
  SqliteWriter writer(options.out / "kalvo.db");
  WriteSample(organization, writer, progress);
  progress.Step("indexes");
  writer.Finish();
}

TextProgress::~TextProgress() { EndLine(); }

// The last count that was shown is seldom the whole; a step that has ended stands without one.
void TextProgress::EndLine() {
  constexpr std::string_view kOverTheCount = "     ";
  if (lineOpen_) out_ << "\r" << step_ << kOverTheCount << "\n";
  lineOpen_ = false;
}

void TextProgress::Step(std::string_view what) {
  EndLine();
  out_ << what << std::flush;
  step_ = what;
  lineOpen_ = true;
}

void TextProgress::Rows(std::int64_t done, std::int64_t total) {
  if (total > 0) out_ << "\r" << step_ << " " << done * 100 / total << "%" << std::flush;
}

}  // namespace kalvo::sample
