#pragma once

#include <string>
#include <string_view>

#include "kalvo/platform/append.h"
#include "kalvo/platform/clock.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/platform.h"

namespace kalvo {

// From its making to its report: the start and end of a step, and the seconds between them, for the "Time" lines.
class Elapsed {
 public:
  explicit Elapsed(const Platform& platform)
      : platform_(platform), start_(platform.clock.Now()), startTimer_(platform.clock.Timer()) {}

  // "<p>SQL Open from 1/2/1999 3:04:05 PM to 1/2/1999 3:04:06 PM (0.75 seconds)</p>"
  std::string Report(std::string_view step) const {
    return Built([&](std::string& out) {
      Append(out, "<p>", step, " from ");
      AppendDate(out, start_, platform_.locale);
      out += " to ";
      AppendDate(out, platform_.clock.Now(), platform_.locale);
      out += " (";
      AppendSingle(out, platform_.clock.Timer() - startTimer_);
      out += " seconds)</p>";
    });
  }

 private:
  const Platform& platform_;
  Date start_;
  float startTimer_;
};

}  // namespace kalvo
