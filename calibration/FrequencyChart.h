// The chart of the four reference frequencies: a picture prepared for each preset and four labels,
// whose refreshing a switch turns off and on. Thread: main.
#pragma once

#include <array>
#include <cstdint>

#include "calibration/CalibrationOutlets.h"
#include "calibration/Presets.h"
#include "ports/Device.h"
#include "ports/Log.h"
#include "ports/SettingsStore.h"

namespace endpin {

class FrequencyChart {
 public:
  // Writes the labels, in hertz from the highest string, unless the chart is switched off; then
  // they keep what they show.
  void refreshLabels(const std::array<double, 4>& frequencies, CalibrationOutlets& outlets) const;

  // Shows the picture of a preset. The larger of the older phones use the tablet's artwork.
  static void showPicture(const Preset& preset, const Device& device, CalibrationOutlets& outlets);

  // The switch: labels follow at the next refresh.
  void toggleFreqChart(const Switch& sender, SettingsStore& settings, Log& log);

  // On at every start, whatever was saved: only the switch itself turns it off.
  [[nodiscard]] bool freqChartEnabled() const { return freqChartEnabled_; }

 private:
  bool freqChartEnabled_ = true;
};

}  // namespace endpin
