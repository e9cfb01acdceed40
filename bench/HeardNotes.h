// A held note as both estimators hear it: begun at several places of the half-second block, through
// endpin-cli. What `./dev hearing` makes its tables of.
#pragma once

#include "tests/e2e/Listening.h"

namespace endpin::testing {

enum class Ear { Default, Fine };

// A sound that begins with a note of so many seconds, at a calibration.
struct Note {
  int string = 0;  // of kCelloStrings
  Sound sound;
  double seconds = 6.0;
  int a4 = 440;
};

// Shares are of the ticks up to the end of the note.
struct Heard {
  double judged = 0;     // judged in tune anew, from 1.2 s on: the mean over the places
  double leastLit = 1;   // lamp green for the string, from 0.7 s of the note on: the worst place
  double mostLit = 0;    // the same from 2 s of the note on, the other way round
  bool green = false;    // ever, at the own string
  bool another = false;  // ever, at another string
};

// Throws std::runtime_error when endpin-cli fails.
Heard hear(const Note& note, Ear ear);

// The note that the string has at a calibration.
CelloNote noteOf(int string, int a4 = 440);

}  // namespace endpin::testing
