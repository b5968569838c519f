#include "host/attack/attack.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>

#include "host/attack/client.h"
#include "host/attack/probes.h"
#include "host/parts/setting_error.h"

namespace kalvo::attack {
namespace {

constexpr int kMostSilences = 3;  // one after another, then the system is left alone

// An answer's words on a terminal: printable ASCII, and not without end.
std::string Shown(std::string text) {
  constexpr std::size_t kLongest = 300;
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
  return text.size() > kLongest ? text.substr(0, kLongest) + "..." : text;
}

std::string FindingOf(Client& client, const Probe& probe, int& silences) {
  try {
    const Answer answer = client.Ask(probe.question);
    silences = 0;
    return probe.judge(answer, client.GetOrigin().encrypted);
  } catch (const std::runtime_error& error) {
    ++silences;
    return std::string("no answer: ") + error.what();
  }
}

}  // namespace

int RunAttack(const AttackOptions& options, std::ostream& out) {
  const auto origin = ParseOrigin(options.url);
  if (!origin) {
    throw host::SettingError("\"" + options.url +
                             "\" is not the address of a console; https://HOST or http://HOST:PORT is");
  }
  Client client(*origin);
  int asked = 0, found = 0, silences = 0;
  for (const Probe& probe : Probes(options.cookie)) {
    const std::string finding = FindingOf(client, probe, silences);
    ++asked;
    if (finding.empty()) continue;
    ++found;
    out << "FOUND  " << probe.what << ": " << Shown(finding) << std::endl;
    if (silences == kMostSilences) {
      out << "The system does not answer; the rest was not asked\n";
      break;
    }
  }
  out << asked << " questions, " << found << (found == 1 ? " finding" : " findings") << '\n';
  return found == 0 ? 0 : 1;
}

}  // namespace kalvo::attack
