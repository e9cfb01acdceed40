// What `endpin-cli listen --json` said, line by line, and what a test wants to know about it.
#pragma once

#include <array>
#include <chrono>
#include <functional>
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

// Reads every complete line. Throws std::runtime_error, with the line, when one is not a JSON
// object with exactly the eight keys of a tick.
Ticks parseTicks(const std::string& output);

// `endpin-cli` with these arguments, as a command.
Command endpin(const std::vector<std::string>& arguments);

// Whether a reading lies in the string's in-tune band at A4 = 440, from the reference frequencies
// and their divisors anew.
bool inBand(int string, double frequency);

// The least share of the steady ticks that must be in tune when a string is exactly in tune. C2 has
// to forgive: it lies almost midway between two bins of the spectrum, and of all places where a
// block of the sampled cello may begin, one in eleven makes the estimator take the upper, outside
// the band. Such blocks come in twos and threes. A file's blocks always begin at the same places;
// live ones begin anywhere, and a window of two seconds may hold hardly a good one.
inline constexpr double kLeastShareOfFile[4] = {0.95, 0.95, 0.95, 0.6};
inline constexpr double kLeastShareLive[4] = {0.95, 0.95, 0.95, 0.0};

int countOf(const Ticks& ticks, const std::function<bool(const Tick&)>& holds);

// Of the ticks from 1.2 s on (the first block ends at 0.6 s and has the attack in it) to `to`,
// where the note ends: the part that judged this string in tune anew. The lamp alone would say
// little: it stays green until there is silence.
double shareInTune(const Ticks& ticks, int string, double to = 6.0);

// Expects that the ticks judge this string (0 = A3) and no other: its note whenever the lamp is
// green, its ring and no other, at least one beep.
void expectJudged(const Ticks& ticks, int string);
// Expects that no tick lit the lamp, a ring, a note or the beep.
void expectNoJudgement(const Ticks& ticks);

// A live `endpin-cli listen --json` and what it has said so far.
class LiveListener {
 public:
  explicit LiveListener(const Environment& environment,
                        const std::vector<std::string>& arguments = {});

  ChildProcess& child() { return child_; }
  Ticks ticks() const { return parseTicks(child_.output()); }
  // Waits for a new tick of this kind; false when the time is up or the program has ended.
  bool hears(const std::function<bool(const Tick&)>& holds, std::chrono::milliseconds limit);

 private:
  ChildProcess child_;
};

}  // namespace endpin::testing
