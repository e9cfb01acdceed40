// The A4 in force and what follows from it: the frequencies of the four strings, the highlighted
// preset, the name of the pitch. Presets and the restore recompute the frequencies; the stepper
// does not: they follow at the next preset or the next appearance of the screen. Owned by the
// screen controller. Thread: main.
#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "calibration/CalibrationOutlets.h"
#include "calibration/FrequencyChart.h"
#include "calibration/Presets.h"
#include "ports/Bundle.h"
#include "ports/Device.h"
#include "ports/Log.h"
#include "ports/SettingsStore.h"

namespace endpin {

class Calibration {
 public:
  // Everything passed in outlives this.
  struct Ports {
    SettingsStore& settings;
    Device& device;
    Bundle& bundle;
    Log& log;
  };

  Calibration(CalibrationOutlets& outlets, const Ports& ports) : outlets_(outlets), ports_(ports) {}

  // A preset button. `beforeChange` runs after the pitch is named and before it changes.
  void choosePreset(const Preset& preset, const std::function<void()>& beforeChange);

  // The stepper: saves and shows the new A4, whole hertz, truncated. The frequencies stay, and
  // button and chart of 440 are shown whatever the value.
  void setFrequencyValue(const Stepper& sender);

  // First launch: saves and selects 440.
  void resetToConcertPitch();

  // Later launches: `savedA4` goes to label, stepper, name and highlight, as far as it is known.
  void restore(std::int64_t savedA4);

  // Recomputes the four frequencies from the saved A4, logs them, copies them to the tolerances.
  void deriveFrequencies();

  // Refreshes name, chart labels and A4 label.
  void displayChart();
  void displayTemperamentName();

  FrequencyChart& chart() { return chart_; }

  [[nodiscard]] std::int64_t a4InHz() const { return a4InHz_; }
  [[nodiscard]] int temperamentIndex() const { return temperamentIndex_; }

  // Hertz, from the highest string: A3, D3, G2, C2.
  [[nodiscard]] const std::array<double, 4>& frequencies() const { return frequencies_; }
  // Copies from which the width of the in-tune bands follows.
  [[nodiscard]] const std::array<double, 4>& toleranceBases() const { return toleranceBases_; }

 private:
  void setA4(std::int64_t a4InHz);
  void saveA4(std::int64_t a4InHz);
  void logFrequencies();
  void highlight(const Preset& selected);
  void showAsChosen(const Preset& preset);

  CalibrationOutlets& outlets_;
  Ports ports_;
  FrequencyChart chart_;

  std::int64_t a4InHz_ = 0;             // whole hertz; 0 until start-up sets it
  std::int64_t globalFrequency_ = 440;  // second copy of A4, only ever written
  int temperamentIndex_ = 0;            // row of the named pitches, 0 for none
  std::array<double, 4> frequencies_{};
  std::array<double, 4> toleranceBases_{};
};

}  // namespace endpin
