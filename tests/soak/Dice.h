// The chance that writes a soak's script: equal seeds give equal scripts on every machine, which
// the distributions of the standard library do not promise.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>

namespace endpin::soak {

class Dice {
 public:
  explicit Dice(std::uint32_t seed) : engine_(seed) {}

  // From 0 to just below `sides`.
  std::size_t below(std::size_t sides) { return engine_() % sides; }
  bool chance(double probability) { return between(0, 1) < probability; }
  double between(double low, double high) {
    return low + (high - low) * static_cast<double>(engine_()) / 4294967296.0;
  }
  // Alike for every ratio: as often from 1 to 10 as from 10 to 100.
  double ratioBetween(double low, double high) { return low * std::pow(high / low, between(0, 1)); }

 private:
  std::mt19937 engine_;
};

}  // namespace endpin::soak
