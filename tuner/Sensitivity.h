// The two levels between which the tuner holds its display, and the slider that chooses them.
// Thread: main.
#pragma once

#include <array>
#include <cstdint>

#include "ports/Log.h"
#include "ports/Outlets.h"
#include "ports/SettingsStore.h"

namespace endpin {

// Thresholds by slider index, on the linear level scale (0 to 1). The upper half of the slider
// changes nothing.
inline constexpr std::array<double, 11> sensitivityBottomLimits = {
    0.007, 0.006, 0.005, 0.004, 0.003, 0.002, 0.002, 0.002, 0.002, 0.002, 0.002};
inline constexpr std::array<double, 11> sensitivityTopLimits = {
    0.0095, 0.0085, 0.0075, 0.0065, 0.0055, 0.0045, 0.0045, 0.0045, 0.0045, 0.0045, 0.0045};

struct Sensitivity {
  double bottomLimit = 0.002;  // below it the display is cleared
  double topLimit = 0.0045;    // above it a tick judges the pitch
  std::int64_t micSensitivityValue = 0;

  // What a level and a frequency (single precision, as the listener gives them) are worth. Not a
  // number clears.
  enum class Gate { Clear, Hold, Detect };
  [[nodiscard]] Gate judge(float power, float frequency) const;

  // The slider was moved: the value before snapping chooses the thresholds, the snapped one is kept
  // and saved.
  void micSensitivity(Slider& sender, const Slider& slider, SettingsStore& settings, Log& log);

  // Takes the index over without touching the thresholds: they follow the slider only. What no
  // integer can hold counts as 0.
  void restore(double savedSliderValue, Slider& slider);
};

}  // namespace endpin
