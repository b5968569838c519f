#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <exception>
#include <sstream>

#include "base/file.h"
#include "base/steady_clock.h"
#include "host/parts/database_proof.h"
#include "host/parts/setting_error.h"

namespace kalvo::host {
namespace {

constexpr int kPatienceMilliseconds = 10'000;
constexpr std::size_t kLongestTold = 16 * 1024;

// A proof as a line: its outcome's number, a blank, the finding.
std::string Line(const Proof& proof) {
  std::string finding = proof.finding;
  for (char& c : finding) c = c == '\n' ? ' ' : c;
  return std::to_string(static_cast<int>(proof.outcome)) + ' ' + finding + '\n';
}

Proof FromLine(const std::string& line) {
  if (line.size() < 2 || line[0] < '0' || line[0] > '2') return {Proof::Outcome::NotMade, "the proof was broken off"};
  return {static_cast<Proof::Outcome>(line[0] - '0'), line.substr(2)};
}

[[noreturn]] void ProveAndTell(const PartsSettings& settings, const base::File& out) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  std::string told;
  try {
    const DatabaseProof proof = ProveDatabase(settings);
    told = Line(proof.readsOnly) + Line(proof.stops);
  } catch (const std::exception& error) {
    const Proof failed{Proof::Outcome::NotMade, error.what()};
    told = Line(failed) + Line(failed);
  }
  told.resize(std::min(told.size(), kLongestTold));
  _exit(base::WriteAll(out, told) ? 0 : 1);
}

// What is told until the other end is closed or the time is over.
std::string Listen(const base::File& in) {
  const std::int64_t until = base::Milliseconds() + kPatienceMilliseconds;
  std::string told;
  for (std::int64_t left; (left = until - base::Milliseconds()) > 0;) {
    pollfd waiting{in.Handle(), POLLIN, 0};
    if (poll(&waiting, 1, static_cast<int>(left)) < 0 && errno != EINTR) break;
    if (waiting.revents == 0) continue;
    char piece[4096];
    const ssize_t got = read(in.Handle(), piece, sizeof piece);
    if (got <= 0) break;
    told.append(piece, static_cast<std::size_t>(got));
  }
  return told;
}

}  // namespace

DatabaseProof ProveDatabaseAside(const PartsSettings& settings) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw SettingError("there is no pipe for a proof of the database");
  const base::File in(ends[0]);
  base::File out(ends[1]);
  const pid_t child = fork();
  if (child == 0) ProveAndTell(settings, out);
  out.Close();
  if (child < 0) throw SettingError("there is no process for a proof of the database");
  std::istringstream told(Listen(in));
  kill(child, SIGKILL);
  while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
  std::string readsOnly, stops;
  std::getline(told, readsOnly);
  std::getline(told, stops);
  if (readsOnly.empty()) {
    const Proof silent{Proof::Outcome::NotMade, "the data source did not answer within ten seconds"};
    return {silent, silent};
  }
  return {FromLine(readsOnly), FromLine(stops)};
}

}  // namespace kalvo::host
