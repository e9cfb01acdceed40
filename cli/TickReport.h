// What the application shows after one tick, and its two texts: an object for programs, a line for
// people. Thread: main.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "cli/Session.h"

namespace endpin {

struct TickReport {
  std::uint64_t number = 0;  // of the tick; ten are a second
  float power = 0;           // linear level
  float frequency = 0;       // hertz, as measured
  std::string freq_label;
  std::string noteDisplay;
  std::string LEDDisplay;       // name of the picture
  std::array<bool, 4> rings{};  // shown, by string
  std::uint64_t beeps = 0;      // so far

  [[nodiscard]] bool inTune() const { return LEDDisplay.starts_with("green"); }
};

[[nodiscard]] TickReport reportTick(std::uint64_t number, const Session& session);

// One line of JSON, with its end.
[[nodiscard]] std::string jsonLine(const TickReport& report);

}  // namespace endpin
