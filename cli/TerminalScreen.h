// The screen of a program without a window: every element that the application acts on, as plain
// values, in the states that a layout gives them. Thread: main.
#pragma once

#include <array>

#include "app/ViewController.h"

namespace endpin {

class TerminalScreen {
 public:
  TerminalScreen();
  TerminalScreen(const TerminalScreen&) = delete;
  TerminalScreen& operator=(const TerminalScreen&) = delete;

  // Makes the controller act on these elements. They outlive it.
  void connect(ViewController& controller);

  Label freq_label, noteDisplay;
  ImageView LEDDisplay, LEDDisplay128;
  std::array<ImageView, 4> rings;  // of the strings A3, D3, G2, C2

  ImageView tunedString, tunedString5, tunedStringiPad;
  Slider micSensitivitySlider;
  Switch soundNotificationSwitch, stringSoundsSwitch, freqChartSwitch;
  Label turnUpTheVolumeLabel, turnUpTheVolumeTriangleLabel;

  std::array<Button, 9> presets;
  Label calibrationFrequencyValue, currentTemperamentName;
  Stepper setFrequencyValueStepper;
  ImageView chartDisplay;
  std::array<Label, 4> stringFrequencies;

  std::array<Button, 4> toneButtons;
  Label tfnoteDisplay, tfFreqLabel;
  Button tuningForkButton, goToSettingsButton;

  Label calibrationLabel, hZLabel, micSensitivityLabel, soundNotificationLabel, stringSoundsLabel,
      frequencyChartLabel, aboutMsg2, aboutCongratsMessage;
  PickerView establecerIdioma;

 private:
  void connectTuner(TunerOutlets& outlets);
  void connectCalibration(CalibrationOutlets& outlets);
  void connectTexts(AppOutlets& outlets);
};

}  // namespace endpin
