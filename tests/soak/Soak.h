// What both soaks need: chance, and figures with their bounds. Thread: one at a time.
#pragma once

#include <fmt/format.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <string_view>

namespace endpin::soak {

// Equal seeds give equal scripts on every machine, which the distributions of the standard library
// do not promise.
class Dice {
 public:
  explicit Dice(std::uint32_t seed) : engine_(seed) {}

  std::size_t below(std::size_t sides) { return engine_() % sides; }
  bool chance(double probability) { return between(0, 1) < probability; }
  double between(double low, double high) {
    return low + (high - low) * static_cast<double>(engine_()) / 4294967296.0;
  }
  // As often from 1 to 10 as from 10 to 100.
  double ratioBetween(double low, double high) { return low * std::pow(high / low, between(0, 1)); }

 private:
  std::mt19937 engine_;
};

// Prints each figure when it is known, and remembers whether one broke its bound.
class Bounds {
 public:
  void tell(std::string_view what, const std::string& figure) {
    fmt::print("  {:<52} {}\n", what, figure);
    std::fflush(stdout);
  }
  void atMost(std::string_view what, double figure, double bound, std::string_view unit = "") {
    const bool kept = figure <= bound;
    kept_ = kept_ && kept;
    tell(what,
         fmt::format("{:.6g} {} (at most {:.6g}){}", figure, unit, bound, kept ? "" : "  BROKEN"));
  }
  [[nodiscard]] int exitCode() const { return kept_ ? 0 : 1; }

 private:
  bool kept_ = true;
};

}  // namespace endpin::soak
