// The nine calibration presets, in the order in which their buttons are treated.
#pragma once

#include <array>
#include <cstdint>

#include "calibration/CalibrationOutlets.h"

namespace endpin {

struct Preset {
  std::int64_t a4InHz;
  int temperamentIndex;
  Button CalibrationOutlets::*button;
  const char* phoneChart;
  const char* padChart;
  const char* logText;
  bool logsFrequenciesAgain = false;  // the two oldest pitches repeat the frequencies in the log
  bool restoresPadChart = false;      // shown again on tablets when this pitch is restored
};

inline constexpr std::array<Preset, 9> kPresets = {{
    {392, 1, &CalibrationOutlets::setA392btn, "chartiphone392.png", "chartipad392.png",
     "Save A 392Hz", true},
    {415, 2, &CalibrationOutlets::setA415btn, "chartiphone415.png", "chartipad415.png",
     "Save A 415Hz", true},
    {432, 5, &CalibrationOutlets::setA432btn, "chartiphone432.png", "chartipad432.png",
     "Save A 432Hz", false, true},
    {440, 8, &CalibrationOutlets::setA440btn, "chartiphone440.png", "chartipad440.png",
     "Save A 440Hz"},
    {441, 9, &CalibrationOutlets::setA441btn, "chartiphone441.png", "chartipad441.png",
     "Save A 441Hz"},
    {442, 10, &CalibrationOutlets::setA442btn, "chartiphone442.png", "chartipad442.png",
     "Save A 442Hz"},
    {443, 11, &CalibrationOutlets::setA443btn, "chartiphone443.png", "chartipad443.png",
     "Save A 443Hz"},
    {444, 12, &CalibrationOutlets::setA444btn, "chartiphone444.png", "chartipad444.png",
     "Save A 444Hz"},
    {466, 14, &CalibrationOutlets::setA466btn, "chartiphone466.png", "chartipad466.png",
     "Save A 466Hz"},
}};

// The preset of that pitch, or null.
[[nodiscard]] constexpr const Preset* presetFor(std::int64_t a4InHz) {
  for (const Preset& preset : kPresets) {
    if (preset.a4InHz == a4InHz) return &preset;
  }
  return nullptr;
}

}  // namespace endpin
