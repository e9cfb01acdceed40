#include "tuner/Sensitivity.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>

namespace endpin {
namespace {

constexpr double kHighestPlausible = 1000.0;  // hertz

}  // namespace

Sensitivity::Gate Sensitivity::judge(float power, float frequency) const {
  const double level = power;
  if (!(bottomLimit <= level && static_cast<double>(frequency) <= kHighestPlausible)) {
    return Gate::Clear;
  }
  return level <= topLimit ? Gate::Hold : Gate::Detect;
}

void Sensitivity::micSensitivity(Slider& sender, const Slider& slider, SettingsStore& settings,
                                 Log& log) {
  micSensitivityValue = static_cast<std::int64_t>(slider.value());
  sender.setValue(std::round(sender.value()));
  settings.setInteger("savedSliderValue", static_cast<std::int64_t>(slider.value()));
  settings.synchronize();
  if (micSensitivityValue >= 0 && micSensitivityValue <= 10) {
    const auto row = static_cast<std::size_t>(micSensitivityValue);
    bottomLimit = sensitivityBottomLimits[row];
    topLimit = sensitivityTopLimits[row];
  }
  log.line(fmt::format("micSensitivityValue: {}", micSensitivityValue));
  log.line(fmt::format("bottomLimit: {:f}", bottomLimit));
  log.line(fmt::format("topLimit: {:f}", topLimit));
}

void Sensitivity::restore(double savedSliderValue, Slider& slider) {
  constexpr double kTooLarge = 9223372036854775808.0;        // 2^63
  const bool fits = std::abs(savedSliderValue) < kTooLarge;  // not a number does not
  micSensitivityValue = fits ? static_cast<std::int64_t>(savedSliderValue) : 0;
  slider.setValue(static_cast<double>(micSensitivityValue));
}

}  // namespace endpin
