#include "host/audit/verification.h"

#include <map>
#include <optional>

#include "host/audit/log_files.h"
#include "host/audit/reading.h"
#include "kalvo/platform/append.h"

namespace kalvo::audit {
namespace {

constexpr int kMostAttempts = 20;
constexpr std::size_t kMostTorn = 1000;  // findings of one kind; a log with more is broken anyway

// Where a line is, as findings name it.
struct Place {
  std::string file;
  std::int64_t line = 0;
};

// Walks the lines in order and remembers what the next one has to be.
class Check {
 public:
  explicit Check(std::string_view hash) : hash_(hash) {}

  void BeginFile(const std::string& name) { place_ = {name, 0}; }

  void Take(const LineReader::Line& line) {
    ++place_.line;
    auto record = ReadLine(line.text);
    if (!record) return TakeTorn(line);
    CheckTorn(*record);
    CheckChain(*record);
    CheckOutcome(*record);
    ++found_.lines;
    found_.containsHash = found_.containsHash || record->hash == hash_;
    last_ = std::move(record);
  }

  Verification Finish() {
    for (const Torn& torn : torn_) {
      if (torn.last && !torn.ended) {
        Note(torn.place, "a line of ", torn.text.size(), " bytes is unfinished; the next event will note it");
      } else {
        Break(torn.place, "this is no line of the audit log, or it was changed");
      }
    }
    for (const auto& intent : intents_) {
      found_.noted.push_back(Built([&](std::string& text) {
        Append(text, "line ", intent.first, ": ", NameOf(intent.second),
               " has no outcome; the server was stopped in between");
      }));
    }
    found_.whole = found_.broken.empty();
    if (last_) found_.lastNumber = last_->number, found_.lastHash = last_->hash;
    return std::move(found_);
  }

 private:
  // What stands between two lines and is not one.
  struct Torn {
    Place place;
    std::string text;
    bool ended = false;
    bool last = true;  // in its file
  };

  template <typename... Pieces>
  static std::string Finding(const Place& place, const Pieces&... pieces) {
    return Built([&](std::string& text) { Append(text, place.file, ':', place.line, ": ", pieces...); });
  }
  template <typename... Pieces>
  void Break(const Place& place, const Pieces&... pieces) {
    found_.broken.push_back(Finding(place, pieces...));
  }
  template <typename... Pieces>
  void Note(const Place& place, const Pieces&... pieces) {
    found_.noted.push_back(Finding(place, pieces...));
  }

  void TakeTorn(const LineReader::Line& line) {
    if (torn_.size() < kMostTorn) torn_.push_back({place_, line.text, line.ended, true});
  }

  // An unfinished line is an honest one when a later line of the log says what it was.
  void CheckTorn(const Record& record) {
    for (Torn& torn : torn_) torn.last = false;
    if (record.event != Event::LineTorn) return;
    for (auto torn = torn_.begin(); torn != torn_.end(); ++torn) {
      if (torn->place.file != record.Detail("file") || HashOf(torn->text) != record.Detail("sha256")) continue;
      if (record.Detail("ended") == "yes") {
        Break(torn->place, "a whole line was changed; line ", record.number, " notes it");
      } else {
        Note(torn->place, "a line of ", torn->text.size(), " bytes was never finished; line ", record.number,
             " notes it");
      }
      torn_.erase(torn);
      return;
    }
    Break(place_, "it notes an unfinished line that is not there");
  }

  void CheckChain(const Record& record) {
    if (!last_) {
      if (record.number != 1) {
        Note(place_, "the log begins with line ", record.number, "; older files are not here");
      } else if (record.previous != kNoHash) {
        Break(place_, "the first line names a line before it");
      }
      return;
    }
    if (record.number != last_->number + 1) {
      Break(place_, "line ", record.number, " follows line ", last_->number);
    } else if (record.previous != last_->hash) {
      Break(place_, "line ", record.number, " does not carry the hash of the line before");
    }
  }

  void CheckOutcome(const Record& record) {
    if (record.event == Event::DeleteIntended || record.event == Event::RestoreIntended) {
      intents_.emplace(record.number, record.event);
    }
    const auto intent = IntentOf(record.event);
    if (!intent) return;
    for (auto open = intents_.begin(); open != intents_.end(); ++open) {
      if (std::to_string(open->first) != record.Detail("intent")) continue;
      intents_.erase(open);
      return;
    }
  }

  std::string_view hash_;
  Place place_;
  std::optional<Record> last_;
  std::vector<Torn> torn_;
  std::map<std::int64_t, Event> intents_;  // without an outcome so far
  Verification found_;
};

Verification VerifyFiles(const std::vector<std::filesystem::path>& files, std::string_view hash) {
  Check check(hash);
  for (const auto& file : files) {
    check.BeginFile(file.filename().string());
    LineReader reader(file);
    while (const auto line = reader.Next()) check.Take(*line);
  }
  return check.Finish();
}

}  // namespace

// A server that puts a full file aside meanwhile makes one look as if it were missing.
Verification Verify(const std::filesystem::path& folder, std::string_view hash) {
  auto files = LogFiles(folder);
  for (int attempt = 0;; ++attempt) {
    Verification found = VerifyFiles(files, hash);
    auto now = LogFiles(folder);
    if (now == files || attempt == kMostAttempts) return found;
    files = std::move(now);
  }
}

}  // namespace kalvo::audit
