// What `endpin-cli listen --json` said, line by line, and what a test wants to know about it.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/SampledCello.h"

namespace endpin::testing {

struct Tick {
  double time = 0.0;
  double power = 0.0;
  float frequency = 0.0F;
  std::string label;
  std::string note;
  std::string lamp;
  std::array<bool, 4> rings{};
  int beeps = 0;

  bool green() const { return lamp == "green64.png"; }
};
using Ticks = std::vector<Tick>;

// Reads every complete line. Throws when one is no JSON object with exactly the keys of a tick.
Ticks parseTicks(const std::string& output);

// `endpin-cli` with these arguments, as a command.
Command endpin(Command arguments);

// Whether this tick read the string in tune just now, by its band worked out anew. The lamp alone
// would say little: it stays green until there is silence.
bool greenAt(int string, const Tick& tick, double a4 = 440.0);

// The least share of the steady ticks that must be in tune when a string of a file is exactly in
// tune. C2 has to forgive: it lies almost midway between two bins of the spectrum, and of all
// places where a block of the sampled cello may begin, one in eleven makes the estimator take the
// upper, outside the band. Such blocks come in twos and threes.
inline constexpr double kLeastShareOfFile[4] = {0.95, 0.95, 0.95, 0.6};

// In tune, of the ticks from 1.2 s on (the first block ends at 0.6 s and has the attack in it) to
// `to`, where the note ends.
double shareInTune(const Ticks& ticks, int string, double to = 6.0, double a4 = 440.0);

}  // namespace endpin::testing
