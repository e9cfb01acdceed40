#include "calibration/Calibration.h"

#include <fmt/format.h>

#include "calibration/StringFrequencies.h"
#include "calibration/TemperamentName.h"

namespace endpin {
namespace {

constexpr std::int64_t kConcertPitch = 440;

std::string a4Text(std::int64_t a4InHz) {
  return fmt::format("{:02}", a4InHz);
}

}  // namespace

void Calibration::setA4(std::int64_t a4InHz) {
  a4InHz_ = a4InHz;
  globalFrequency_ = a4InHz;
}

void Calibration::saveA4(std::int64_t a4InHz) {
  ports_.settings.setInteger("a4InHzSavedValue", a4InHz);
}

void Calibration::logFrequencies() {
  for (const double frequency : frequencies_) ports_.log.line(fmt::format("{:f}", frequency));
}

void Calibration::deriveFrequencies() {
  frequencies_ = stringFrequencies(ports_.settings.integerForKey("a4InHzSavedValue"));
  logFrequencies();
  toleranceBases_ = frequencies_;
}

void Calibration::choosePreset(const Preset& preset, const std::function<void()>& beforeChange) {
  temperamentIndex_ = preset.temperamentIndex;
  beforeChange();
  setA4(preset.a4InHz);
  saveA4(preset.a4InHz);
  deriveFrequencies();
  ports_.settings.synchronize();
  showAsChosen(preset);
}

void Calibration::showAsChosen(const Preset& preset) {
  FrequencyChart::showPicture(preset, ports_.device, outlets_);
  ports_.log.line(preset.logText);
  if (preset.logsFrequenciesAgain) logFrequencies();
  highlight(preset);
  displayChart();
}

void Calibration::highlight(const Preset& selected) {
  for (const Preset& preset : kPresets) {
    const bool isSelected = preset.a4InHz == selected.a4InHz;
    (outlets_.*preset.button).setBackgroundImage(isSelected ? "selectedFreqBg.png" : "");
  }
}

void Calibration::setFrequencyValue(const Stepper& sender) {
  const auto a4 = static_cast<std::int64_t>(sender.value());
  setA4(a4);
  temperamentIndex_ = temperamentOfStepper(sender.value());
  if (temperamentIndex_ == 0) outlets_.currentTemperamentName.setText("");
  outlets_.calibrationFrequencyValue.setText(a4Text(a4));
  ports_.settings.setInteger("savedA4Calibration", a4InHz_);
  saveA4(a4);
  ports_.settings.synchronize();
  toleranceBases_ = frequencies_;
  ports_.settings.synchronize();
  showAsChosen(*presetFor(kConcertPitch));
}

void Calibration::resetToConcertPitch() {
  const Preset& preset = *presetFor(kConcertPitch);
  setA4(preset.a4InHz);
  temperamentIndex_ = preset.temperamentIndex;
  highlight(preset);
}

void Calibration::restore(std::int64_t savedA4) {
  outlets_.calibrationFrequencyValue.setText(a4Text(savedA4));
  outlets_.setFrequencyValueStepper.setValue(static_cast<double>(savedA4));
  a4InHz_ = savedA4;
  if (const int index = temperamentOfRestored(savedA4)) {
    setA4(savedA4);
    temperamentIndex_ = index;
  }
  const Preset* preset = presetFor(savedA4);
  if (!preset) return;
  highlight(*preset);
  if (preset->restoresPadChart && ports_.device.isTablet()) {
    outlets_.chartDisplay.setImage(preset->padChart);
  }
}

void Calibration::displayTemperamentName() {
  endpin::displayTemperamentName(temperamentIndex_, ports_.bundle, outlets_.currentTemperamentName);
}

void Calibration::displayChart() {
  displayTemperamentName();
  chart_.refreshLabels(frequencies_, outlets_);
  outlets_.calibrationFrequencyValue.setText(a4Text(a4InHz_));
}

}  // namespace endpin
