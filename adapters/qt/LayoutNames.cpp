#include "adapters/qt/LayoutNames.h"

namespace endpin {

std::span<const OutletName> outletNames() {
  using Screen = ViewController;
  static const OutletName kNames[] = {
      {"freq_label", &Screen::freq_label},
      {"noteDisplay", &Screen::noteDisplay},
      {"LEDDisplay", &Screen::LEDDisplay},
      {"LEDDisplay128", &Screen::LEDDisplay128},
      {"ring1", &Screen::ring1},
      {"ring2", &Screen::ring2},
      {"ring3", &Screen::ring3},
      {"ring4", &Screen::ring4},
      {"tunedString", &Screen::tunedString},
      {"tunedString5", &Screen::tunedString5},
      {"tunedStringiPad", &Screen::tunedStringiPad},
      {"micSensitivitySlider", &Screen::micSensitivitySlider},
      {"soundNotificationSwitch", &Screen::soundNotificationSwitch},
      {"stringSoundsSwitch", &Screen::stringSoundsSwitch},
      {"turnUpTheVolumeLabel", &Screen::turnUpTheVolumeLabel},
      {"turnUpTheVolumeTriangleLabel", &Screen::turnUpTheVolumeTriangleLabel},

      {"setA392btn", &Screen::setA392btn},
      {"setA415btn", &Screen::setA415btn},
      {"setA432btn", &Screen::setA432btn},
      {"setA440btn", &Screen::setA440btn},
      {"setA441btn", &Screen::setA441btn},
      {"setA442btn", &Screen::setA442btn},
      {"setA443btn", &Screen::setA443btn},
      {"setA444btn", &Screen::setA444btn},
      {"setA466btn", &Screen::setA466btn},
      {"calibrationFrequencyValue", &Screen::calibrationFrequencyValue},
      {"setFrequencyValueStepper", &Screen::setFrequencyValueStepper},
      {"currentTemperamentName", &Screen::currentTemperamentName},
      {"chartDisplay", &Screen::chartDisplay},
      {"firstStringFreq", &Screen::firstStringFreq},
      {"secondStringFreq", &Screen::secondStringFreq},
      {"thirdStringFreq", &Screen::thirdStringFreq},
      {"fourthStringFreq", &Screen::fourthStringFreq},
      {"freqChartSwitch", &Screen::freqChartSwitch},
      {"a3TFButton", &Screen::a3TFButton},
      {"d3TFButton", &Screen::d3TFButton},
      {"g2TFButton", &Screen::g2TFButton},
      {"c2TFButton", &Screen::c2TFButton},
      {"tfnoteDisplay", &Screen::tfnoteDisplay},
      {"tfFreqLabel", &Screen::tfFreqLabel},
      {"tuningForkButton", &Screen::tuningForkButton},
      {"goToSettingsButton", &Screen::goToSettingsButton},

      {"calibrationLabel", &Screen::calibrationLabel},
      {"hZLabel", &Screen::hZLabel},
      {"micSensitivityLabel", &Screen::micSensitivityLabel},
      {"soundNotificationLabel", &Screen::soundNotificationLabel},
      {"stringSoundsLabel", &Screen::stringSoundsLabel},
      {"frequencyChartLabel", &Screen::frequencyChartLabel},
      {"aboutMsg2", &Screen::aboutMsg2},
      {"aboutCongratsMessage", &Screen::aboutCongratsMessage},
      {"establecerIdioma", &Screen::establecerIdioma},
  };
  return kNames;
}

std::span<const ActionName> actionNames() {
  using Screen = ViewController;
  static const ActionName kNames[] = {
      {"setA392", &Screen::setA392},
      {"setA415", &Screen::setA415},
      {"setA432", &Screen::setA432},
      {"setA440", &Screen::setA440},
      {"setA441", &Screen::setA441},
      {"setA442", &Screen::setA442},
      {"setA443", &Screen::setA443},
      {"setA444", &Screen::setA444},
      {"setA466", &Screen::setA466},
      {"setFrequencyValue", &Screen::setFrequencyValue},
      {"micSensitivity", &Screen::micSensitivity},
      {"soundNotificationAction", &Screen::soundNotificationAction},
      {"toggleStringSounds", &Screen::toggleStringSounds},
      {"toggleFreqChart", &Screen::toggleFreqChart},
      {"playA3", &Screen::playA3},
      {"playD3", &Screen::playD3},
      {"playG2", &Screen::playG2},
      {"playC2", &Screen::playC2},
      {"stopFreqPlay", &Screen::stopFreqPlay},
      {"disableTemporarilySoundConfirmation", &Screen::disableTemporarilySoundConfirmation},
      {"enableSoundConfirmation", &Screen::enableSoundConfirmation},
  };
  return kNames;
}

}  // namespace endpin
