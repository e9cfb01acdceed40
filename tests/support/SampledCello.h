// A cello that we did not make: notes of a General MIDI soundfont's sampled cello, played by
// fluidsynth, measured, and resampled to sound at exactly the frequency a test asks for. Soundfonts
// lie several cents off, more than the tuner forgives.
#pragma once

#include <string>

#include "tests/support/Tone.h"

namespace endpin::testing {

struct CelloString {
  const char* note;
  int midiNote;
  double frequency;  // Hertz, equal temperament at A4 = 440.
};
inline constexpr CelloString kCelloStrings[4] = {{"A3", 57, 220.0},
                                                 {"D3", 50, 146.8323839594813},
                                                 {"G2", 43, 97.99885899614745},
                                                 {"C2", 36, 65.4063913257512}};

struct CelloNote {
  int midiNote = 57;
  double frequency = 220.0;  // Where the fundamental of the steady part lies, before `cents`.
  double cents = 0.0;
  double seconds = 6.0;  // From the attack on; the release follows.
  double level = 0.1;    // RMS of the whole.
  double noiseLevel = 0.0;
  bool plucked = false;
};

// Empty when notes can be rendered here; otherwise what is missing, for a skip that names it.
std::string whyNoSampledCello();

// 48000 Hz. Throws std::runtime_error when the note does not land within 0.05 cent of what was
// asked for (0.5 when plucked: a plucked string has little steady tone).
Sound sampledCello(const CelloNote& note);

}  // namespace endpin::testing
