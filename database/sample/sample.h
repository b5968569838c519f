#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

namespace kalvo::sample {

enum class SampleSize { Small, Medium, Large };

// "small", "medium" or "large"; fails with a clear text for any other word.
SampleSize SampleSizeFromName(std::string_view name);

// Whose mail is made: of some hundreds of the organization's mailboxes too, of the sample's own two users with the
// public folders alone, or no mail store at all.
enum class SampleMail { All, Users, None };

// "all", "users" or "none"; fails with a clear text for any other word.
SampleMail SampleMailFromName(std::string_view name);

// What the identifiers of a sample's folders and messages are checked with, in its mail store and in its database.
using SampleKey = std::array<std::uint8_t, 16>;

// A key that nobody can guess.
SampleKey RandomSampleKey();

struct SampleOptions {
  std::filesystem::path out;  // a folder, made when it is not there; receives kalvo.db
  SampleSize size = SampleSize::Small;
  std::uint64_t seed = 1;
  SampleMail mail = SampleMail::All;
  std::optional<SampleKey> key{};  // of the identifiers; nothing: it follows from the seed
};

// Told what is being made, for a user who waits.
class Progress {
 public:
  virtual ~Progress() = default;
  virtual void Step(std::string_view what) = 0;                  // a step begins
  virtual void Rows(std::int64_t done, std::int64_t total) = 0;  // within a step, every now and then
};

// Tells nobody.
class SilentProgress : public Progress {
 public:
  void Step(std::string_view) override {}
  void Rows(std::int64_t, std::int64_t) override {}
};

// One line a step, with a count that is written over itself: for a terminal or a log.
class TextProgress : public Progress {
 public:
  explicit TextProgress(std::ostream& out) : out_(out) {}
  ~TextProgress() override;
  void Step(std::string_view what) override;
  void Rows(std::int64_t done, std::int64_t total) override;

 private:
  void EndLine();

  std::ostream& out_;
  std::string step_;
  bool lineOpen_ = false;
};

// Makes the reporting database of a believable organization: OUT/kalvo.db, SQLite. A file of that name is
// replaced only when the new one is whole. The same options give the same rows, on every machine. Fails with
// kalvo::Error.
void MakeSample(const SampleOptions& options, Progress& progress);

}  // namespace kalvo::sample
