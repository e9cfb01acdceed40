// A bowed open string of a cello, synthesised: what the build uses where a recording of an
// instrument in exact tune is wanted.
#pragma once

#include <vector>

namespace endpin {

struct Bowing {
  double hertz;    // the pitch, exact over the whole note
  double seconds;  // attack and decay included
  int sampleRate;  // hertz
  double level;    // RMS of the sustained note, of full scale
};

// The same bowing gives the same samples, bit for bit.
std::vector<float> bowString(const Bowing& bowing);

}  // namespace endpin
