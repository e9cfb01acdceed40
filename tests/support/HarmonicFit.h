// The fundamental of a steady tone, measured far more finely than the tuner does it and in another
// way: a least-squares fit of one fundamental and its harmonics to the whole sound.
#pragma once

#include "tests/support/Tone.h"

namespace endpin::testing {

// Hertz. `guess` may be off by 25 cents; the tone should be steady for a second or more.
double fundamentalOf(const Sound& sound, double guess);

double centsBetween(double frequency, double reference);
double raisedByCents(double frequency, double cents);

}  // namespace endpin::testing
