#pragma once

#include <string>
#include <vector>

#include "host/attack/client.h"

namespace kalvo::attack {

// What is wrong with an answer, as a sentence without its point; "" when it is as it should be.
using Judge = std::string (*)(const Answer& answer, bool encrypted);

struct Probe {
  std::string what;  // is tried, in a word or two
  Question question;
  Judge judge;
};

// Every question that changes nothing on the system, whatever it answers: none posts, none names an identifier that
// was ever issued. With a visitor's Cookie header, pages are asked too; "" asks as a stranger.
std::vector<Probe> Probes(const std::string& cookie);

}  // namespace kalvo::attack
