#include "calibration/FrequencyChart.h"

#include <fmt/format.h>

#include <cstddef>

#include "calibration/StringFrequencies.h"
#include "ports/DeviceTable.h"

namespace endpin {

void FrequencyChart::refreshLabels(const std::array<double, 4>& frequencies,
                                   CalibrationOutlets& outlets) const {
  if (!freqChartEnabled_) return;
  const std::array<Label*, 4> labels = {&outlets.firstStringFreq, &outlets.secondStringFreq,
                                        &outlets.thirdStringFreq, &outlets.fourthStringFreq};
  for (std::size_t i = 0; i < labels.size(); ++i) {
    labels[i]->setText(fmt::format("{} = {:.1f}Hz", kStringNotes[i], frequencies[i]));
  }
}

void FrequencyChart::showPicture(const Preset& preset, const Device& device,
                                 CalibrationOutlets& outlets) {
  if (device.isPhone()) {
    const DeviceModel* model = deviceOf(InterfaceIdiom::Phone, device.screenHeight());
    const bool large = model && model->largeChart;
    outlets.chartDisplay.setImage(large ? preset.padChart : preset.phoneChart);
  } else if (device.isTablet()) {
    outlets.chartDisplay.setImage(preset.padChart);
  }
}

void FrequencyChart::toggleFreqChart(const Switch& sender, SettingsStore& settings, Log& log) {
  freqChartEnabled_ = sender.isOn();
  settings.setBool("frequencyChartEnabled", freqChartEnabled_);
  settings.synchronize();
  log.line(fmt::format("Frequency chart IS{} enabled: {:d}", freqChartEnabled_ ? "" : " NOT",
                       freqChartEnabled_));
}

}  // namespace endpin
