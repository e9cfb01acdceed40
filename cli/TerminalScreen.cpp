#include "cli/TerminalScreen.h"

#include <cstddef>

#include "calibration/Presets.h"

namespace endpin {

TerminalScreen::TerminalScreen() {
  LEDDisplay.setImage("yellow64.png");
  LEDDisplay128.setImage("yellow128.png");
  for (ImageView* picture : {&tunedString, &tunedString5, &tunedStringiPad}) {
    picture->setHidden(true);
  }
  turnUpTheVolumeLabel.setHidden(true);
  turnUpTheVolumeTriangleLabel.setHidden(true);
}

void TerminalScreen::connect(ViewController& controller) {
  connectTuner(controller);
  connectCalibration(controller);
  connectTexts(controller);
}

void TerminalScreen::connectTuner(TunerOutlets& outlets) {
  outlets.freq_label.connect(&freq_label);
  outlets.noteDisplay.connect(&noteDisplay);
  outlets.LEDDisplay.connect(&LEDDisplay);
  outlets.LEDDisplay128.connect(&LEDDisplay128);
  outlets.ring1.connect(&rings[0]);
  outlets.ring2.connect(&rings[1]);
  outlets.ring3.connect(&rings[2]);
  outlets.ring4.connect(&rings[3]);
  outlets.tunedString.connect(&tunedString);
  outlets.tunedString5.connect(&tunedString5);
  outlets.tunedStringiPad.connect(&tunedStringiPad);
  outlets.micSensitivitySlider.connect(&micSensitivitySlider);
  outlets.soundNotificationSwitch.connect(&soundNotificationSwitch);
  outlets.stringSoundsSwitch.connect(&stringSoundsSwitch);
  outlets.turnUpTheVolumeLabel.connect(&turnUpTheVolumeLabel);
  outlets.turnUpTheVolumeTriangleLabel.connect(&turnUpTheVolumeTriangleLabel);
}

void TerminalScreen::connectCalibration(CalibrationOutlets& outlets) {
  for (std::size_t i = 0; i < presets.size(); ++i) {
    (outlets.*kPresets[i].button).connect(&presets[i]);
  }
  outlets.calibrationFrequencyValue.connect(&calibrationFrequencyValue);
  outlets.setFrequencyValueStepper.connect(&setFrequencyValueStepper);
  outlets.currentTemperamentName.connect(&currentTemperamentName);
  outlets.chartDisplay.connect(&chartDisplay);
  outlets.firstStringFreq.connect(&stringFrequencies[0]);
  outlets.secondStringFreq.connect(&stringFrequencies[1]);
  outlets.thirdStringFreq.connect(&stringFrequencies[2]);
  outlets.fourthStringFreq.connect(&stringFrequencies[3]);
  outlets.freqChartSwitch.connect(&freqChartSwitch);
  outlets.a3TFButton.connect(&toneButtons[0]);
  outlets.d3TFButton.connect(&toneButtons[1]);
  outlets.g2TFButton.connect(&toneButtons[2]);
  outlets.c2TFButton.connect(&toneButtons[3]);
  outlets.tfnoteDisplay.connect(&tfnoteDisplay);
  outlets.tfFreqLabel.connect(&tfFreqLabel);
  outlets.tuningForkButton.connect(&tuningForkButton);
  outlets.goToSettingsButton.connect(&goToSettingsButton);
}

void TerminalScreen::connectTexts(AppOutlets& outlets) {
  outlets.calibrationLabel.connect(&calibrationLabel);
  outlets.hZLabel.connect(&hZLabel);
  outlets.micSensitivityLabel.connect(&micSensitivityLabel);
  outlets.soundNotificationLabel.connect(&soundNotificationLabel);
  outlets.stringSoundsLabel.connect(&stringSoundsLabel);
  outlets.frequencyChartLabel.connect(&frequencyChartLabel);
  outlets.aboutMsg2.connect(&aboutMsg2);
  outlets.aboutCongratsMessage.connect(&aboutCongratsMessage);
  outlets.establecerIdioma.connect(&establecerIdioma);
}

}  // namespace endpin
