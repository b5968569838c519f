#pragma once

#include "kalvo/platform/locale.h"

namespace kalvo {

class Clock;
class Database;
class TopNFactory;

// The outside as the library reaches it. Made once by the host and handed down by reference; it outlives every
// object that was given it.
struct Platform {
  Database& database;
  TopNFactory& topN;
  Clock& clock;
  const Locale& locale = kEnglishUnitedStates;
};

}  // namespace kalvo
