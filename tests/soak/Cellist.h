// What the microphone of the virtual day hears: one passage after the other, made sample by sample
// at the capture rate, so that a day of sound needs no room. Thread: one at a time.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <span>
#include <utility>

#include "adapters/capture/CaptureFormat.h"
#include "tests/soak/Soak.h"

namespace endpin::soak {

struct Passage {
  double level = 0;      // root mean square, 1 is full scale; above it the sound is clipped
  int harmonics = 0;     // falling like 1/k; 0 is noise
  double frequency = 0;  // hertz, as it sounds now
  double glide = 1;      // what the frequency is multiplied by each second
};
inline constexpr int kBowed = 12;  // the 12th of the highest A3 still lies below half the rate
inline constexpr int kThin = 3;    // of a string that is only touched

class Cellist {
 public:
  void play(const Passage& passage) {
    passage_ = passage;
    bend_ = std::pow(passage.glide, 1 / kCaptureRate);
  }
  [[nodiscard]] const Passage& passage() const { return passage_; }

  void fill(std::span<std::int16_t> samples) {
    for (std::int16_t& sample : samples) {
      const double value = passage_.level * (passage_.harmonics > 0 ? nextOfTone() : nextOfNoise());
      sample = static_cast<std::int16_t>(std::lrint(std::clamp(value, -1.0, 1.0) * 32767));
    }
  }

 private:
  // Both of level 1.
  double nextOfNoise() { return hiss_.between(-std::numbers::sqrt3, std::numbers::sqrt3); }
  double nextOfTone() {
    phase_ = std::fmod(phase_ + passage_.frequency / kCaptureRate, 1);
    passage_.frequency *= bend_;
    const double angle = 2 * std::numbers::pi * phase_;
    const double twiceCosine = 2 * std::cos(angle);
    double before = 0;
    double sine = std::sin(angle);  // of the angle, then of its multiples
    double sum = 0;
    double power = 0;
    for (int k = 1; k <= passage_.harmonics; ++k) {
      sum += sine / k;
      power += 0.5 / (k * k);
      before = std::exchange(sine, twiceCosine * sine - before);
    }
    return sum / std::sqrt(power);
  }

  Passage passage_;
  double phase_ = 0;  // periods
  double bend_ = 1;   // of the frequency, a sample
  Dice hiss_{7};
};

}  // namespace endpin::soak
