// What the microphone of the virtual day hears: one passage after the other, made sample by sample
// at the capture rate, so that a day of sound needs no room. Thread: one at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "tests/soak/Dice.h"

namespace endpin::soak {

struct Passage {
  enum class Kind { Silence, Noise, Bow, Harmonic };  // Harmonic: the thin tone of a touched string

  Kind kind = Kind::Silence;
  double level = 0;      // root mean square, 1 is full scale; above it the sound is clipped
  double frequency = 0;  // hertz, at its beginning
  double glide = 1;      // what the frequency is multiplied by each second
};

class Cellist {
 public:
  Cellist();

  void play(const Passage& passage);
  void fill(std::span<std::int16_t> samples);

 private:
  static constexpr std::size_t kPoints = 2048;  // of one period
  using Wave = std::array<float, kPoints + 1>;  // of level 1, the first point again at the end

  static Wave waveOf(int harmonics);
  double nextOf(const Wave& wave);
  double nextNoise();

  const Wave bow_;
  const Wave harmonic_;
  Passage passage_;
  double phase_ = 0;  // periods
  double step_ = 0;   // periods a sample
  double bend_ = 1;   // of the step, a sample
  Dice hiss_{7};
};

}  // namespace endpin::soak
